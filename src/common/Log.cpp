#include "common/Log.h"

#include <cstdio>
#include <mutex>

namespace zelvar {
namespace {

std::mutex& logMutex() {
    static std::mutex mutex;
    return mutex;
}

std::function<void(const QString&)>& logSink() {
    static std::function<void(const QString&)> sink;
    return sink;
}

}  // namespace

void logLine(const QString& line) {
    std::lock_guard lock(logMutex());
    if (auto& sink = logSink()) {
        sink(line);
        return;
    }
    const QByteArray bytes = line.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

LogRedirect::LogRedirect(std::function<void(const QString&)> sink) {
    std::lock_guard lock(logMutex());
    logSink() = std::move(sink);
}

LogRedirect::~LogRedirect() {
    std::lock_guard lock(logMutex());
    logSink() = nullptr;
}

}  // namespace zelvar
