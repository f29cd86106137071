#pragma once

#include <unistd.h>

namespace zelvar {

// An open POSIX file descriptor, closed when this goes; -1 holds nothing. Shared by the
// adapters and the subsystems that read files themselves.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor() {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return m_fd; }

private:
    int m_fd;
};

}  // namespace zelvar
