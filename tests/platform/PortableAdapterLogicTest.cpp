#include <cerrno>
#include <cstring>
#include <limits>

#include "platform/portable/FullProcessName.h"
#include "platform/portable/GrowingTable.h"
#include "platform/portable/MachTimebase.h"
#include "platform/portable/UnwrappingInterfaceCounters.h"
#include "support/FakePorts.h"
#include "support/Testing.h"

// The arithmetic of the macOS adapters, on fakes of what the kernel hands them.

TEST(MachTimebaseTest, TicksBecomeNanosecondsAtTheMachinesRatioWithoutOverflow) {
    constexpr quint64 kMax = std::numeric_limits<quint64>::max();
    const MachTimebase apple(125, 3);  // Apple processors: 24 MHz ticks
    const MachTimebase intel(1, 1);
    const MachTimebase failed(7, 0);
    // One second of CPU on an Apple processor is 24 million ticks, not nanoseconds.
    EXPECT_EQ(apple.nanoseconds(24'000'000), 1'000'000'000u);
    EXPECT_EQ(std::tuple(apple.nanoseconds(0), apple.nanoseconds(1), apple.nanoseconds(2),
                         apple.nanoseconds(3), apple.nanoseconds(5)),
              std::tuple(0u, 41u, 83u, 125u, 208u));
    // ticks × 125 overflows 64 bits long before the result does.
    const quint64 big = kMax / 100;
    EXPECT_EQ(apple.nanoseconds(big), big / 3 * 125 + big % 3 * 125 / 3);
    EXPECT_EQ(apple.nanoseconds(kMax), kMax);  // saturates
    EXPECT_EQ(std::tuple(intel.nanoseconds(kMax), failed.nanoseconds(12345)),
              std::tuple(kMax, 12345u));
}

namespace {

struct Record {
    qint32 id = 0;
    qint32 parent = 0;
};

// A sysctl-like table that grows by `growth` records after each size query, `times` times.
struct GrowingFakeTable {
    int records = 100;
    int growth = 0;
    int times = 0;
    int failWith = 0;
    int queries = 0;
    int fills = 0;

    int operator()(Record* buffer, std::size_t* size) {
        if (failWith != 0) {
            return failWith;
        }
        if (buffer == nullptr) {
            ++queries;
            *size = records * sizeof(Record);
            if (times > 0) {
                --times;
                records += growth;
            }
            return 0;
        }
        ++fills;
        const std::size_t needed = records * sizeof(Record);
        if (*size < needed) {
            *size = 0;
            return ENOMEM;
        }
        for (int i = 0; i < records; ++i) {
            buffer[i] = {i + 1, i};
        }
        *size = needed;
        return 0;
    }
};

std::optional<std::vector<Record>> readTable(GrowingFakeTable& table) {
    return GrowingTable<Record>::read(
        [&](Record* buffer, std::size_t* size) { return table(buffer, size); });
}

}  // namespace

TEST(GrowingTableTest, HeadroomAbsorbsGrowthAndEnomemAsksAgainUntilTheAttemptsRunOut) {
    // A few processes more between the size query and the fill fit in the headroom.
    GrowingFakeTable small{.growth = 20, .times = 1};
    const auto fitted = readTable(small);
    ASSERT_TRUE(fitted.has_value());
    EXPECT_EQ(std::tuple(fitted->size(), fitted->back().id, small.queries, small.fills),
              std::tuple(120u, 120, 1, 1));
    // Beyond the headroom, ENOMEM; the size is asked again and the next fill succeeds.
    GrowingFakeTable burst{.growth = 500, .times = 2};
    const auto refilled = readTable(burst);
    ASSERT_TRUE(refilled.has_value());
    EXPECT_EQ(std::tuple(refilled->size(), burst.queries, burst.fills), std::tuple(1100u, 3, 3));
    // A table that outgrows every attempt, or a query that fails outright, gives nothing.
    GrowingFakeTable runaway{.growth = 1000, .times = 100};
    GrowingFakeTable refused{.failWith = EPERM};
    EXPECT_EQ(
        std::tuple(readTable(runaway).has_value(), runaway.fills, readTable(refused).has_value()),
        std::tuple(false, 4, false));
    // A table that shrank comes back at its new length.
    GrowingFakeTable shrinking{.growth = -40, .times = 1};
    EXPECT_EQ(readTable(shrinking).value_or(std::vector<Record>{}).size(), 60u);
}

TEST(FullProcessNameTest, ANameThatFilledTheKernelsBufferIsCompletedFromTheExecutable) {
    const QString helper = "/Library/Helpers/com.example.very-long-helper-name.agent";
    const QString name32 = "com.example.very-long-helper-nam";  // p_name's 32 bytes
    const QString comm16 = "zelvar-test-chil";                  // p_comm's 16
    const std::tuple<QString, QString, QString> cases[] = {
        {name32, helper, "com.example.very-long-helper-name.agent"},
        {comm16, "/build/zelvar-test-child-with-a-long-name", "zelvar-test-child-with-a-long-name"},
        // Shorter names were whole; they are never looked up, whatever the path says.
        {"Safari", "/Applications/Safari.app/Contents/MacOS/Safari-x", "Safari"},
        {"com.example.helper-1", "/opt/com.example.helper-12", "com.example.helper-1"},
        // A process that named itself keeps its name; so does one whose path is unknown.
        {name32, "/usr/bin/python3", name32},
        {comm16, "", comm16},
    };
    for (const auto& [shortName, path, expected] : cases) {
        EXPECT_EQ(FullProcessName::choose(shortName, path), expected) << path.toStdString();
    }

    // KERN_PROCARGS2: argc, the executable's path, padding, then the arguments.
    const int argc = 2;
    QByteArray args(reinterpret_cast<const char*>(&argc), sizeof argc);
    args += QByteArray("/usr/local/bin/long-running-daemon\0\0\0daemon\0--flag\0", 51);
    EXPECT_EQ(FullProcessName::executablePathFromProcArgs(args),
              "/usr/local/bin/long-running-daemon");
    EXPECT_EQ(std::tuple(FullProcessName::executablePathFromProcArgs(args.left(3)),
                         FullProcessName::executablePathFromProcArgs(args.left(10)),
                         FullProcessName::executablePathFromProcArgs(args.left(sizeof argc) +
                                                                     QByteArray(1, '\0'))),
              std::tuple(QString(), QString(), QString()));
}

TEST(UnwrappingInterfaceCountersTest, ThirtyTwoBitCountersKeepCountingAcrossTheirWrap) {
    constexpr quint64 k2to32 = 1ull << 32;
    auto fake = std::make_unique<FakeInterfaceCounters>();
    FakeInterfaceCounters& source = *fake;
    UnwrappingInterfaceCounters counters(std::move(fake));
    const auto read = [&] {
        QList<std::tuple<QString, quint64, quint64, bool>> figures;
        for (const InterfaceCounter& i : counters.read().value_or(QList<InterfaceCounter>{})) {
            figures.append({i.name, i.receivedBytes, i.sentBytes, i.physical});
        }
        return figures;
    };
    using Figures = QList<std::tuple<QString, quint64, quint64, bool>>;

    source.set({{"en0", k2to32 - 1000, 50, true}, {"utun0", 7, 8, false}});
    EXPECT_EQ(read(), (Figures{{"en0", k2to32 - 1000, 50, true}, {"utun0", 7, 8, false}}));
    // en0's received counter wraps: 1000 bytes to the top, then 500 past zero.
    source.set({{"en0", 500, 80, true}, {"utun0", 9, 8, false}});
    EXPECT_EQ(read(), (Figures{{"en0", k2to32 + 500, 80, true}, {"utun0", 9, 8, false}}));
    // And again, a whole turn later: the total goes on rising.
    source.set({{"en0", 400, k2to32 - 1, true}});
    EXPECT_EQ(read(), (Figures{{"en0", 2 * k2to32 + 400, k2to32 - 1, true}}));
    // A failed read changes nothing; an interface that was missing starts again from its
    // raw figure.
    source.fail();
    EXPECT_FALSE(counters.read().has_value());
    source.set({{"en0", 600, 1, true}, {"utun0", 3, 4, false}});
    EXPECT_EQ(read(),
              (Figures{{"en0", 2 * k2to32 + 600, k2to32 + 1, true}, {"utun0", 3, 4, false}}));
}
