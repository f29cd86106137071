#include "platform/linux/SysfsInterfaceCounters.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace zelvar {
namespace {

std::optional<quint64> readCounter(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    bool ok = false;
    const quint64 value = file.read(64).trimmed().toULongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

}  // namespace

SysfsInterfaceCounters::SysfsInterfaceCounters(QString root) : m_root(std::move(root)) {}

std::optional<QList<InterfaceCounter>> SysfsInterfaceCounters::read() {
    const QDir root(m_root);
    if (!root.exists()) {
        return std::nullopt;
    }
    QList<InterfaceCounter> interfaces;
    // The entries are symbolic links into /sys/devices, so links must be listed too.
    const QStringList names = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString& name : names) {
        const QString base = m_root + QLatin1Char('/') + name;
        const auto received = readCounter(base + QStringLiteral("/statistics/rx_bytes"));
        const auto sent = readCounter(base + QStringLiteral("/statistics/tx_bytes"));
        if (!received || !sent) {
            continue;  // vanished between the listing and the read, or not an interface
        }
        interfaces.append(
            {name, *received, *sent, QFileInfo::exists(base + QStringLiteral("/device"))});
    }
    return interfaces;
}

}  // namespace zelvar
