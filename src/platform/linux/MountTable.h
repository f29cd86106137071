#pragma once

#include <QString>
#include <QStringList>

namespace zelvar {

// The mount points of /proc/self/mounts (fstab format: device, mount point, type, options, two
// numbers; blanks and other odd bytes written as octal escapes like "\040") whose device is a
// block device ("/dev/...") and that lie at or under one of `roots`. Each point once, in table
// order.
QStringList blockDeviceMountsUnder(const QByteArray& mountTable, const QStringList& roots);

// "\040" -> " ", and so on for every three-digit octal escape.
QString decodeMountField(const QByteArray& field);

}  // namespace zelvar
