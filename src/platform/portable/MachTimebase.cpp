#include "platform/portable/MachTimebase.h"

#include <limits>

namespace zelvar {

MachTimebase::MachTimebase(quint32 numerator, quint32 denominator)
    : m_numerator(denominator == 0 ? 1 : numerator),
      m_denominator(denominator == 0 ? 1 : denominator) {}

quint64 MachTimebase::nanoseconds(quint64 ticks) const {
    // Whole denominators first, then the remainder, so that no product exceeds 64 + 32 bits'
    // worth of value before the division: ticks = q × d + r, and ticks × n / d = q × n + r × n / d.
    const quint64 whole = ticks / m_denominator;
    const quint64 rest = ticks % m_denominator;
    quint64 result = 0;
    if (__builtin_mul_overflow(whole, static_cast<quint64>(m_numerator), &result) ||
        __builtin_add_overflow(result, rest * m_numerator / m_denominator, &result)) {
        return std::numeric_limits<quint64>::max();
    }
    return result;
}

}  // namespace zelvar
