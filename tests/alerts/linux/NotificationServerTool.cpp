// Serves notifications on the session bus for trying the application by hand, one JSON line each.
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

#include "NotificationServer.h"

using zelvar::test::NotificationServer;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    NotificationServer server(QDBusConnection::sessionBus());
    if (!server.registerOnBus()) {
        std::fprintf(stderr, "cannot register org.freedesktop.Notifications\n");
        return 1;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);  // each line as soon as it is written
    QObject::connect(&server, &NotificationServer::notified, [](const auto& n) {
        const QJsonObject line{{"app", n.appName},
                               {"summary", n.summary},
                               {"body", n.body},
                               {"hints", QJsonObject::fromVariantMap(n.hints)}};
        std::printf("%s\n", QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
    });
    std::printf("ready\n");
    return QCoreApplication::exec();
}
