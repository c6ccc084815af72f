#include "web/CdpConnector.h"

#include "app/Trap.h"
#include "web/Discovery.h"

namespace ed::web {

CdpConnector::CdpConnector(const QString& endpointSetting, CdpOptions options)
    : setting_(endpointSetting), problem_(), endpoint_(parseEndpoint(endpointSetting, &problem_)),
      options_(options) {}

QString CdpConnector::endpointText() const {
    return endpoint_ ? endpoint_->text() : setting_;
}

Endpoint CdpConnector::endpoint() const {
    if (!endpoint_)
        throw RuntimeError(problem_.toStdString());
    return *endpoint_;
}

BrowserHandle CdpConnector::firstPage() {
    const auto pages = listPages(endpoint(), options_.discoveryTimeoutMs);
    if (!pages || pages->empty())
        return {};
    return pages->front();
}

std::unique_ptr<BrowserPage> CdpConnector::attach(const BrowserHandle& window) {
    return std::make_unique<CdpPage>(window, endpoint(), options_);
}

} // namespace ed::web
