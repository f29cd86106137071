#pragma once

#include <gtest/gtest.h>

#include <QFile>

namespace zelvar::test {

// The text of a file under tests/fixtures, such as "network/ss-tinp-netperf-ipv6.txt". A file
// that can't be read fails the test and gives empty text.
inline QString readFixture(const QString& relativePath) {
    QFile file(QStringLiteral(ZELVAR_FIXTURES_DIR "/") + relativePath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << relativePath.toStdString();
    return QString::fromUtf8(file.readAll());
}

}  // namespace zelvar::test
