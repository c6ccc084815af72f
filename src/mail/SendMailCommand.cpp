// Opens the send-mail form over the window, with the selection (else the whole text) as body.

#include "mail/SendMailCommand.h"

#include "mail/CurlTransport.h"
#include "mail/SendMailForm.h"

#include <QApplication>

namespace ed {

void mnuSendAsEmail_Click(CommandContext& ctx) {
    const QString body = ctx.edit.selLength() > 0 ? ctx.edit.selText() : ctx.edit.text();
    auto* form = new mail::SendMailForm(ctx.settings, body, std::make_shared<mail::CurlTransport>(),
                                        QApplication::activeWindow());
    form->setAttribute(Qt::WA_DeleteOnClose);
    form->show();
}

} // namespace ed
