#pragma once
// One send: the same body to every delivery address, one message each, through a transport.
// Runs on any thread; reports each address as it is done and stops early when cancelled.

#include "mail/MailMessage.h"
#include "mail/MailTransport.h"

#include <QStringList>

#include <atomic>
#include <functional>
#include <vector>

namespace ed::mail {

enum class AddressStatus { Sent, Skipped, Failed, Cancelled };

struct AddressResult {
    QString address;
    AddressStatus status = AddressStatus::Skipped;
    QString reason;
};

struct SendRequest {
    QStringList addresses;
    QString from;
    QString subject;
    QString body;
    bool hasAttachment = false;
    Attachment attachment;
    SmtpServer server;
};

// Delivery addresses from text: one per line, or separated by "," or ";"; blanks dropped.
QStringList splitAddresses(const QString& text);

// The addresses in a text file in any of the encodings documents may have. False with `error`.
bool readAddressFile(const QString& path, QStringList& addresses, QString& error);

// Whether an address is one mail can go to.
bool isDeliverable(const QString& address);

// What must be right before anything is sent; "" when it is. Names the first problem.
QString checkRequest(const SendRequest& request);

// Sends to each address in turn. `onResult` sees each address once, in order (after the
// cancellation every address left is reported as cancelled).
std::vector<AddressResult>
runSend(const SendRequest& request, MailTransport& transport, const std::atomic_bool& cancel,
        const std::function<void(int index, const AddressResult&)>& onResult = {});

// "sent", "skipped", "failed", "cancelled".
QString statusWord(AddressStatus status);

} // namespace ed::mail
