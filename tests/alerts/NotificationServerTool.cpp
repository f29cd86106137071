// A notification server for trying the application by hand: registers on the session bus of
// the environment and prints each notification it receives as one JSON line.
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

#include "NotificationServer.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    zelvar::test::NotificationServer server(QDBusConnection::sessionBus());
    if (!server.registerOnBus()) {
        std::fprintf(stderr, "cannot register org.freedesktop.Notifications\n");
        return 1;
    }
    QObject::connect(
        &server, &zelvar::test::NotificationServer::notified,
        [](const zelvar::test::NotificationServer::Received& n) {
            const QJsonObject line{{QStringLiteral("app"), n.appName},
                                   {QStringLiteral("summary"), n.summary},
                                   {QStringLiteral("body"), n.body},
                                   {QStringLiteral("hints"), QJsonObject::fromVariantMap(n.hints)}};
            std::printf("%s\n", QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
            std::fflush(stdout);
        });
    std::printf("ready\n");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
