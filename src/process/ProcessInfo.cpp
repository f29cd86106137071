#include "process/ProcessInfo.h"

#include <cmath>
#include <limits>

#include "common/IsoDate.h"

namespace zelvar {
namespace {

std::optional<Pid> pidFrom(const QJsonValue& value) {
    if (!value.isDouble()) {
        return std::nullopt;
    }
    const double d = value.toDouble();
    if (std::trunc(d) != d || d < std::numeric_limits<Pid>::min() ||
        d > std::numeric_limits<Pid>::max()) {
        return std::nullopt;
    }
    return static_cast<Pid>(d);
}

std::optional<ProcessOrigin> originFrom(const QJsonValue& value) {
    return value.isObject() ? ProcessOrigin::fromJson(value.toObject()) : std::nullopt;
}

}  // namespace

QString ProcessInfo::displayMemory() const {
    if (memoryMB > 1024.0) {
        return QString::asprintf("%.1f GB", memoryMB * 0.0009765625);
    }
    return QString::asprintf("%.0f MB", memoryMB);
}

QString ProcessInfo::displayCPU() const {
    return QString::asprintf("%.1f%%", cpuPercent);
}

QJsonObject ProcessInfo::toJson() const {
    return {
        {QStringLiteral("id"), id},
        {QStringLiteral("ppid"), ppid},
        {QStringLiteral("name"), name},
        {QStringLiteral("memory_mb"), memoryMB},
        {QStringLiteral("cpu_percent"), cpuPercent},
        {QStringLiteral("timestamp"), formatIsoDate(timestamp)},
        {QStringLiteral("immediateOrigin"), immediateOrigin.toJson()},
        {QStringLiteral("rootOrigin"), rootOrigin.toJson()},
    };
}

std::optional<ProcessInfo> ProcessInfo::fromJson(const QJsonObject& o) {
    const auto id = pidFrom(o.value(u"id"));
    const auto ppid = pidFrom(o.value(u"ppid"));
    const QJsonValue name = o.value(u"name");
    const QJsonValue memory = o.value(u"memory_mb");
    const QJsonValue cpu = o.value(u"cpu_percent");
    const auto timestamp = parseIsoDate(o.value(u"timestamp").toString());
    const auto immediate = originFrom(o.value(u"immediateOrigin"));
    const auto root = originFrom(o.value(u"rootOrigin"));
    if (!id || !ppid || !name.isString() || !memory.isDouble() || !cpu.isDouble() || !timestamp ||
        !immediate || !root) {
        return std::nullopt;
    }
    return ProcessInfo{
        *id,        *ppid, name.toString(), memory.toDouble(), cpu.toDouble(), *timestamp,
        *immediate, *root};
}

}  // namespace zelvar
