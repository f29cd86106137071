#include <QTimeZone>

#include "power/TolerantJson.h"
#include "power/WattlogSampleFiles.h"
#include "support/Testing.h"

namespace {

WattlogBatterySample battery(const char* line) {
    const auto sample = WattlogBatterySample::decode(line);
    EXPECT_TRUE(sample.has_value()) << line;
    return sample.value_or(WattlogBatterySample{});
}

WattlogCorrelationSample correlation(const char* line) {
    const auto sample = WattlogCorrelationSample::decode(line);
    EXPECT_TRUE(sample.has_value()) << line;
    return sample.value_or(WattlogCorrelationSample{});
}

void writeFile(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

// The reference: the whole file split on line feeds, empty lines left out, the last `limit`.
QList<QByteArray> wholeFileLastLines(const QByteArray& content, int limit) {
    QList<QByteArray> lines = content.split('\n');
    lines.removeIf([](const QByteArray& line) { return line.isEmpty(); });
    return lines.mid(std::max<qsizetype>(0, lines.size() - limit));
}

}  // namespace

TEST(TolerantJsonTest, EachTypeTriesItsAttemptsInOrderAndThenTheNextKey) {
    const QJsonObject o = QJsonDocument::fromJson(R"({
        "num": 2, "frac": 2.5, "neg": -1200.6, "text": "1700000000.5", "padded": " 7",
        "yes": "YES", "maybe": "maybe", "no": "no", "zero": 0, "t": true, "whole": "42",
        "big": 9007199254740993, "uuid": "6ba7b810-9dad-11d1-80b4-00c04fd430c8", "bad": "x"
    })")
                              .object();
    using J = TolerantJson;
    EXPECT_EQ(J::decodeDouble(o, {"text"}), 1700000000.5);
    EXPECT_EQ(J::decodeDouble(o, {"padded", "missing", "frac"}), 2.5);
    EXPECT_EQ(J::decodeDouble(o, {"t", "yes"}), std::nullopt);
    EXPECT_EQ(J::decodeText(o, {"num"}), "2");
    EXPECT_EQ(J::decodeText(o, {"frac"}), "2.5");
    EXPECT_EQ(J::decodeText(o, {"t", "yes"}), "YES");
    EXPECT_EQ(J::decodeBool(o, {"yes"}), true);
    EXPECT_EQ(J::decodeBool(o, {"num"}), true);
    EXPECT_EQ(J::decodeBool(o, {"frac"}), true);
    EXPECT_EQ(J::decodeBool(o, {"zero"}), false);
    EXPECT_EQ(J::decodeBool(o, {"no"}), false);
    EXPECT_EQ(J::decodeBool(o, {"maybe"}), std::nullopt);
    EXPECT_EQ(J::decodeBool(o, {"maybe", "t"}), true);
    EXPECT_EQ(J::decodeInt(o, {"neg"}), -1201);
    EXPECT_EQ(J::decodeInt(o, {"frac"}), 3);
    EXPECT_EQ(J::decodeInt(o, {"whole"}), 42);
    EXPECT_EQ(J::decodeInt(o, {"text", "bad", "num"}), 2);
    EXPECT_EQ(J::decodeInt64(o, {"big"}), 9007199254740993LL);
    EXPECT_EQ(J::decodeUuid(o, {"bad", "uuid"}),
              QUuid::fromString(QStringLiteral("6ba7b810-9dad-11d1-80b4-00c04fd430c8")));
    EXPECT_EQ(J::decodeUuid(o, {"bad", "num"}), std::nullopt);
}

TEST(WattlogBatterySampleTest, OlderAndNewerKeysAndDerivedValues) {
    const WattlogBatterySample old = battery(R"({"timestamp": 1700000000, "percent": 81})");
    EXPECT_EQ(old.ts, 1700000000.0);
    EXPECT_EQ(old.recordedPercent, 81);
    EXPECT_EQ(old.percent(), 81);
    EXPECT_EQ(old.date(), QDateTime::fromSecsSinceEpoch(1700000000, QTimeZone::utc()));

    const WattlogBatterySample s = battery(
        R"({"ts": "1700000000.5", "charging": "maybe", "isCharging": 2, "current": -1200.6,
            "voltage": 12000, "capacity": 1234, "maxCapacity": 2468, "temperature_c": "30.5"})");
    EXPECT_EQ(s.ts, 1700000000.5);
    EXPECT_EQ(s.charging, true);
    EXPECT_EQ(s.current, -1201);
    EXPECT_EQ(s.percent(), 50);
    EXPECT_DOUBLE_EQ(*s.watts(), 14.412);
    EXPECT_EQ(s.temperature, 30.5);
    EXPECT_EQ(s.flow(), "charge");
    EXPECT_EQ(battery(R"({"source": "AC", "current": -5})").flow(), "ac_idle");
    EXPECT_EQ(battery(R"({"current": -5})").flow(), "discharge");
    EXPECT_EQ(battery(R"({"watts": 3})").flow(), "idle");
    EXPECT_EQ(battery(R"({"watts": 3, "current": 100, "voltage": 1})").watts(), 3.0);
    EXPECT_EQ(battery("{}").ts, 0.0);
    EXPECT_NE(battery("{}").id, battery("{}").id);
    EXPECT_EQ(WattlogBatterySample::decode("[1]"), std::nullopt);
    EXPECT_EQ(WattlogBatterySample::decode(R"({"ts": 1, "perc)"), std::nullopt);

    EXPECT_EQ(battery(R"({"current": 4500})").menuPowerRateText(), "+100%");
    EXPECT_EQ(battery(R"({"current": -1500})").menuPowerRateText(), "-50%");
    EXPECT_EQ(battery(R"({"current": 0})").menuPowerRateText(), "0%");
    EXPECT_EQ(battery(R"({})").menuPowerRateText(), "0%");
}

TEST(WattlogCorrelationSampleTest, FilledInValuesAndPowermetricsKeys) {
    const WattlogCorrelationSample s = correlation(
        R"({"ts": 5, "cpu_idle_pct": 120, "mem_used_mb": 4096, "ram_total_mb": 16384,
            "power_signed_pct": -7.5, "battery_temp_c": 31, "temperature_c": 40,
            "net_in_delta": "123456789012", "pm_cpu_w": 1.5, "pm_wifi_w_w": "0.25",
            "pm_": 3, "pm_gpu_w": "busy", "pm_ane_w": true, "cpu_user": "12.5"})");
    EXPECT_EQ(s.cpuUtil, 0.0);
    EXPECT_EQ(s.ramUsedPercent, 25.0);
    EXPECT_EQ(s.powerSignedPercent, "-7.5");
    EXPECT_EQ(s.batteryTemperatureC, 31.0);
    EXPECT_EQ(s.netInDelta, 123456789012LL);
    EXPECT_EQ(s.cpuUser, 12.5);
    EXPECT_EQ(s.powermetricsWatts, (QMap<QString, double>{{"cpu", 1.5}, {"wifi", 0.25}}));
    EXPECT_EQ(s.powerFlow, "idle");

    EXPECT_EQ(correlation(R"({"cpu_util_pct": 40, "cpu_idle_pct": 10})").cpuUtil, 40.0);
    EXPECT_EQ(correlation(R"({"power_flow": "discharge", "is_charging": true})").powerFlow,
              "discharge");
    EXPECT_EQ(correlation(R"({"is_charging": "yes", "battery_watts": 0})").powerFlow, "charge");
    EXPECT_EQ(correlation(R"({"source": "AC", "power_w": 4})").powerFlow, "charge");
    EXPECT_EQ(correlation(R"({"source": "AC"})").powerFlow, "ac_idle");
    EXPECT_EQ(correlation(R"({"source": "Battery", "battery_watts": 6})").powerFlow, "discharge");
    EXPECT_EQ(correlation(R"({"ram_total_mb": 0, "mem_used_mb": 5})").ramUsedPercent, std::nullopt);
}

TEST(WattlogSampleFilesTest, NewestFirstFromTheLastLinesOnly) {
    QTemporaryDir dir;
    const QString path = dir.filePath("battery-samples.jsonl");
    QByteArray content;
    for (int i = 1; i <= 241; ++i) {
        content += QStringLiteral(R"({"ts": %1, "current": -%1})").arg(i).toUtf8() + "\n\n";
    }
    writeFile(path, content);
    const auto samples = WattlogSampleFiles::readJSONLLines<WattlogBatterySample>(path, 240);
    ASSERT_EQ(samples.size(), 240);
    EXPECT_EQ(samples.first().ts, 241.0);
    EXPECT_EQ(samples.last().ts, 2.0);

    // A last line still being written counts among the kept lines and is dropped after the cut.
    writeFile(path, content + R"({"ts": 242, "curr)");
    const auto torn = WattlogSampleFiles::readJSONLLines<WattlogBatterySample>(path, 240);
    ASSERT_EQ(torn.size(), 239);
    EXPECT_EQ(torn.first().ts, 241.0);
    EXPECT_EQ(torn.last().ts, 3.0);

    EXPECT_TRUE(WattlogSampleFiles::readJSONLLines<WattlogBatterySample>(dir.filePath("none"), 240)
                    .isEmpty());
    EXPECT_TRUE(WattlogSampleFiles::lastLines(dir.path(), 240).isEmpty());  // a directory
}

TEST(WattlogSampleFilesTest, ReadingFromTheEndKeepsWhatAWholeFileReadKeeps) {
    QTemporaryDir dir;
    const QString path = dir.filePath("samples.jsonl");
    // Lines of very different lengths, blank runs, and lines that straddle the read sizes.
    QByteArray content;
    for (int i = 0; i < 6000; ++i) {
        content += QByteArray("{\"ts\": ") + QByteArray::number(i) + ", \"pad\": \"" +
                   QByteArray((i * 7919) % 700, 'x') + "\"}\n";
        if (i % 13 == 0) {
            content += "\n\n";
        }
    }
    for (const QByteArray& ending :
         {QByteArray(), QByteArray("{\"ts\": 6000"), QByteArray("\n\n\n")}) {
        writeFile(path, content + ending);
        for (const int limit : {1, 240, 2000, 7000}) {
            EXPECT_EQ(WattlogSampleFiles::lastLines(path, limit),
                      wholeFileLastLines(content + ending, limit))
                << "limit " << limit << " ending " << ending.toStdString();
        }
    }
}
