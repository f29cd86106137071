#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace zelvar {

// Reads a kernel table of fixed-size records whose length can change between asking for its
// size and filling the buffer, as sysctl(KERN_PROC_ALL) does while processes start. The query
// works like sysctl: with no buffer it stores the table's size in bytes; with a buffer of
// `*size` bytes it fills it and stores the bytes written. It answers 0 or an errno value, and
// ENOMEM when the buffer was too small.
template <typename Record>
class GrowingTable {
public:
    using Query = std::function<int(Record* buffer, std::size_t* size)>;

    // Room for a quarter more records than the size query reported, plus a few; on ENOMEM the
    // size is asked again, up to `attempts` fills in all. No value when the query fails
    // otherwise or the table outgrows every attempt.
    static std::optional<std::vector<Record>> read(const Query& query, int attempts = 4) {
        for (int attempt = 0; attempt < attempts; ++attempt) {
            std::size_t size = 0;
            if (query(nullptr, &size) != 0) {
                return std::nullopt;
            }
            std::size_t count = size / sizeof(Record);
            count += count / 4 + 8;
            std::vector<Record> records(count);
            size = count * sizeof(Record);
            const int error = query(records.data(), &size);
            if (error == ENOMEM) {
                continue;
            }
            if (error != 0) {
                return std::nullopt;
            }
            records.resize(std::min(count, size / sizeof(Record)));
            return records;
        }
        return std::nullopt;
    }
};

}  // namespace zelvar
