#include "platform/linux/ProcStat.h"

#include <charconv>

namespace zelvar {
namespace {

constexpr qsizetype kCommLimit = 15;  // TASK_COMM_LEN - 1

template <typename T>
std::optional<T> parseNumber(QByteArrayView field) {
    T value{};
    const char* begin = field.data();
    const char* end = begin + field.size();
    auto [ptr, ec] = std::from_chars(begin, end, value);
    if (ec != std::errc{} || ptr != end || field.isEmpty()) {
        return std::nullopt;
    }
    return value;
}

// Splits on single blanks, the way the kernel writes these files.
template <typename Visitor>
void forEachField(QByteArrayView text, Visitor&& visit) {
    qsizetype start = 0;
    int index = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == ' ' || text[i] == '\n') {
            if (i > start && !visit(index++, text.sliced(start, i - start))) {
                return;
            }
            start = i + 1;
        }
    }
}

QByteArrayView baseName(QByteArrayView path) {
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? path : path.sliced(slash + 1);
}

}  // namespace

std::optional<ProcStat> parseProcStat(QByteArrayView text) {
    const qsizetype open = text.indexOf('(');
    const qsizetype close = text.lastIndexOf(')');
    if (open < 1 || close < open) {
        return std::nullopt;
    }
    ProcStat stat;
    const auto pid = parseNumber<qint32>(text.first(open - 1));
    if (!pid) {
        return std::nullopt;
    }
    stat.pid = *pid;
    stat.comm = text.sliced(open + 1, close - open - 1).toByteArray();

    // After the name: state(3) ppid(4) ... utime(14) stime(15) ... starttime(22), numbered as
    // in proc(5). The line is whole once it has stime; starttime counts when it is there.
    bool ok = true;
    int seen = 0;
    forEachField(text.sliced(close + 1), [&](int index, QByteArrayView field) {
        const int number = index + 3;
        if (number == 4) {
            auto v = parseNumber<qint32>(field);
            ok = ok && v.has_value();
            stat.parentPid = v.value_or(0);
        } else if (number == 14 || number == 15 || number == 22) {
            auto v = parseNumber<quint64>(field);
            ok = ok && v.has_value();
            (number == 14   ? stat.userTicks
             : number == 15 ? stat.systemTicks
                            : stat.startTicks) = v.value_or(0);
        }
        seen = number;
        return number < 22;
    });
    if (!ok || seen < 15) {
        return std::nullopt;
    }
    return stat;
}

std::optional<quint64> parseStatmResidentPages(QByteArrayView text) {
    std::optional<quint64> resident;
    forEachField(text, [&](int index, QByteArrayView field) {
        if (index == 1) {
            resident = parseNumber<quint64>(field);
            return false;
        }
        return true;
    });
    return resident;
}

QByteArray fullProcessName(QByteArrayView comm, QByteArrayView cmdline) {
    if ((!comm.isEmpty() && comm.size() < kCommLimit) || cmdline.isEmpty()) {
        return comm.toByteArray();
    }
    QByteArrayView first = cmdline;
    if (const qsizetype nul = first.indexOf('\0'); nul >= 0) {
        first = first.first(nul);
    }
    if (comm.isEmpty()) {
        return baseName(first).toByteArray();
    }
    // Programs that rewrite their title put everything in one argument; try the first word too.
    QByteArrayView firstWord = first;
    if (const qsizetype blank = first.indexOf(' '); blank >= 0) {
        firstWord = first.first(blank);
    }
    for (QByteArrayView candidate : {baseName(first), baseName(firstWord)}) {
        if (candidate.size() > comm.size() && candidate.startsWith(comm)) {
            return candidate.toByteArray();
        }
    }
    return comm.toByteArray();
}

}  // namespace zelvar
