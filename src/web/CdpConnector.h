#pragma once
// Finds browser windows at a DevTools endpoint and attaches a CdpPage to them.

#include "web/BrowserPage.h"
#include "web/CdpPage.h"

namespace ed::web {

class CdpConnector : public BrowserConnector {
public:
    // `endpointSetting` as the user wrote it ("127.0.0.1:9222"); a refused one makes every
    // later call fail with the reason.
    explicit CdpConnector(const QString& endpointSetting, CdpOptions options = {});

    QString endpointText() const override;
    Endpoint endpoint() const override;
    BrowserHandle firstPage() override;
    std::unique_ptr<BrowserPage> attach(const BrowserHandle& window) override;

    // Empty, or why the endpoint setting cannot be used.
    const QString& problem() const { return problem_; }
    const CdpOptions& options() const { return options_; }

private:
    QString setting_;
    QString problem_; // filled while endpoint_ is parsed
    std::optional<Endpoint> endpoint_;
    CdpOptions options_;
};

} // namespace ed::web
