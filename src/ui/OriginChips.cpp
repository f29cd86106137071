#include "ui/OriginChips.h"

namespace zelvar {

QString OriginChips::Chip::text() const {
    const QString icon = origin.icon();
    return icon.isEmpty() ? origin.shortLabel() : icon + QLatin1Char(' ') + origin.shortLabel();
}

QList<OriginChips::Chip> OriginChips::chips(const ProcessOrigin& immediate,
                                            const ProcessOrigin& root) {
    using Kind = ProcessOrigin::Kind;
    QList<Chip> result;
    if (immediate.kind() != Kind::Unknown) {
        result.append({immediate, false});
    }
    if (root != immediate && root.kind() != Kind::Unknown) {
        result.append({root, true});
    }
    return result;
}

QString OriginChips::toolTip(const ProcessOrigin& immediate, const ProcessOrigin& root) {
    if (root != immediate) {
        return QStringLiteral("Immediate: ") + immediate.fullLabel() + QStringLiteral("\nRoot: ") +
               root.fullLabel();
    }
    return immediate.fullLabel();
}

}  // namespace zelvar
