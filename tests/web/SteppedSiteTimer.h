#pragma once
// A site-list timer that never ticks by itself: the test calls fire() for each tick.

#include "web/SiteList.h"

namespace ed::test {

class SteppedSiteTimer : public SiteTimer {
public:
    bool enabled() const override { return enabled_; }
    void setEnabled(bool enabled) override { enabled_ = enabled; }
    int interval() const override { return interval_; }

protected:
    void applyInterval(int ms) override { interval_ = ms; }

private:
    bool enabled_ = false;
    int interval_ = 0;
};

} // namespace ed::test
