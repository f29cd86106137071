#include <sys/stat.h>

#include "common/BoundedFile.h"
#include "support/Testing.h"

namespace {

void write(const QString& path, const QByteArray& data) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(data) == data.size());
}

}  // namespace

TEST(BoundedFileTest, ReadsRegularFilesOnlyWithinTheCapAndSkipsAnUnchangedOne) {
    QTemporaryDir dir;
    const QString path = dir.filePath("usage.json");
    BoundedFile file(path, 8);
    EXPECT_EQ(file.readIfChanged().status, BoundedFile::Status::missing);

    write(path, "12345678");
    const BoundedFile::Result first = file.readIfChanged();
    EXPECT_EQ(std::pair(first.status, first.data),
              std::pair(BoundedFile::Status::read, QByteArray("12345678")));
    EXPECT_EQ(file.readIfChanged().status, BoundedFile::Status::unchanged);
    EXPECT_EQ(file.read().data, "12345678");  // read() doesn't skip

    write(path, "123456789");  // one byte above the cap
    const BoundedFile::Result large = file.readIfChanged();
    EXPECT_EQ(large.status, BoundedFile::Status::refused);
    EXPECT_TRUE(large.error.contains("above")) << large.error.toStdString();

    write(path, "short");
    EXPECT_EQ(file.readIfChanged().data, "short");  // a refusal forgets the last version
    EXPECT_EQ(BoundedFile::readOnce(dir.path()).status, BoundedFile::Status::refused);
}

// A FIFO would block an ordinary open() until some writer came; it is refused at once.
TEST(BoundedFileTest, RefusesAFifoWithoutWaitingForAWriter) {
    QTemporaryDir dir;
    const QString path = dir.filePath("fifo");
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    const BoundedFile::Result result = BoundedFile::readOnce(path);
    EXPECT_EQ(std::pair(result.status, result.error),
              std::pair(BoundedFile::Status::refused, QString("not a regular file")));
}
