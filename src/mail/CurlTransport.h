#pragma once
// Sends mail over SMTP with libcurl: smtp:// with STARTTLS demanded, smtps://, or plain smtp://.

#include "mail/MailTransport.h"

namespace ed::mail {

class CurlTransport : public MailTransport {
public:
    CurlTransport();
    SendOutcome send(const SmtpServer& server, const QString& from, const QString& to,
                     const QByteArray& message, const std::function<bool()>& cancelled) override;
};

} // namespace ed::mail
