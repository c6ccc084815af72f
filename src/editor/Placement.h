#pragma once
// Remembering the window's size and position between runs, and keeping it on top.
// Values are twips in the form's own section ("NSWE_W", "NSWE_H", "NSWE_L", "NSWE_T").

#include "app/Command.h"

namespace ed {

class Placement {
public:
    Placement(AppSettings settings, Logger& log) : settings_(std::move(settings)), log_(log) {}

    void SaveFF(FormGeometry& form);
    void AlignFF(FormGeometry& form, int left, int top, int defaultWidth, int defaultHeight,
                 bool restoreWidth, bool restoreHeight);
    // Fits the rectangle into the screen and moves the form there in one step.
    void ArrangeFloatingForms(FormGeometry& form, int left, int top, int width, int height);
    void PutOnTop(FormGeometry& form);
    void TakeOffTop(FormGeometry& form);
    bool WasIOnTop(FormGeometry& form);

private:
    AppSettings settings_;
    Logger& log_;
};

// View menu > Keep On Top: a pure toggle.
void mnuKeepOnTop_Click(CommandContext& ctx);

} // namespace ed
