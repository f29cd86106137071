#pragma once

#include <QString>

namespace zelvar {

// Compact decimal text for byte counts and rates, shared by the network views and the status
// item: steps of 1000 through B, KB, MB, GB, TB, three significant digits at most below 100
// of a unit ("999B", "1.50KB", "12.3KB", "123KB", "2.00MB/s").
class ByteFormatter {
public:
    static QString bytes(quint64 value);
    static QString signedBytes(qint64 value);
    static QString rate(double bytesPerSecond);
};

}  // namespace zelvar
