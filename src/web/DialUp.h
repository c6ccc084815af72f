#pragma once
// Dial-up connections for Hang Up Modem: list the active ones, hang one up. On Linux this goes
// through NetworkManager's command-line client when it is installed; elsewhere nothing is
// listed and nothing is hung up.

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace ed::web {

class DialUpConnections {
public:
    virtual ~DialUpConnections() = default;
    // The active dial-up connections; nothing when they cannot be listed.
    virtual std::optional<QStringList> activeConnections() = 0;
    // Hangs up one connection of the list; the outcome is not reported.
    virtual void hangUp(const QString& connection) = 0;
};

// Connections of NetworkManager whose type is a modem or PPP link (gsm, cdma, pppoe), from
// the lines of `nmcli -t -f UUID,TYPE connection show --active`.
QStringList dialUpFromNmcli(const QString& output);

class NetworkManagerDialUp : public DialUpConnections {
public:
    explicit NetworkManagerDialUp(QString nmcli);
    std::optional<QStringList> activeConnections() override;
    void hangUp(const QString& connection) override;

private:
    QString nmcli_;
};

// The system's adapter, or one that does nothing when the system has none.
std::unique_ptr<DialUpConnections> systemDialUp();

} // namespace ed::web
