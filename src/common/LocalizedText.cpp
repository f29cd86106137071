#include "common/LocalizedText.h"

#include <unicode/ucol.h>
#include <unicode/uloc.h>
#include <unicode/usearch.h>
#include <unicode/ustring.h>

#include <cstring>

namespace zelvar {
namespace {

const UChar* utf16(const QString& s) {
    return reinterpret_cast<const UChar*>(s.utf16());
}

// Full case folding first ("ß" becomes "ss", "ﬁ" becomes "fi"), which a collator alone treats
// as more than a difference of case.
QString foldCase(const QString& text) {
    QString folded(text.size() + 8, Qt::Uninitialized);
    for (int attempt = 0; attempt < 2; ++attempt) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = u_strFoldCase(
            reinterpret_cast<UChar*>(folded.data()), static_cast<int32_t>(folded.size()),
            utf16(text), static_cast<int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &status);
        if (U_SUCCESS(status)) {
            folded.truncate(length);
            return folded;
        }
        if (status != U_BUFFER_OVERFLOW_ERROR) {
            return text.toCaseFolded();
        }
        folded.resize(length);
    }
    return text.toCaseFolded();
}

// The C and POSIX locales map to ICU's "en_US_POSIX", whose collation is plain code-point
// order; such users get the root collation, as with any locale without tailoring.
const char* collationLocale() {
    const char* locale = uloc_getDefault();
    return std::strstr(locale, "POSIX") ? "" : locale;
}

// A collator at secondary strength compares base letters and accents but not case.
class ThreadCollator {
public:
    ThreadCollator() {
        UErrorCode status = U_ZERO_ERROR;
        m_collator = ucol_open(collationLocale(), &status);
        if (U_FAILURE(status)) {
            status = U_ZERO_ERROR;
            m_collator = ucol_open("", &status);
        }
        if (m_collator) {
            ucol_setStrength(m_collator, UCOL_SECONDARY);
            status = U_ZERO_ERROR;
            ucol_setAttribute(m_collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
        }
    }
    ~ThreadCollator() {
        if (m_search) {
            usearch_close(m_search);
        }
        if (m_collator) {
            ucol_close(m_collator);
        }
    }
    ThreadCollator(const ThreadCollator&) = delete;
    ThreadCollator& operator=(const ThreadCollator&) = delete;

    bool equals(const QString& a, const QString& b) const {
        if (!m_collator) {
            return a.compare(b, Qt::CaseInsensitive) == 0;
        }
        return ucol_strcoll(m_collator, utf16(a), static_cast<int32_t>(a.size()), utf16(b),
                            static_cast<int32_t>(b.size())) == UCOL_EQUAL;
    }

    UCollator* handle() const { return m_collator; }

    bool contains(const QString& text, const QString& part) {
        if (part.isEmpty() || text.isEmpty()) {
            return false;
        }
        if (!m_collator) {
            return text.contains(part, Qt::CaseInsensitive);
        }
        UErrorCode status = U_ZERO_ERROR;
        if (!m_search) {
            m_search = usearch_openFromCollator(utf16(part), static_cast<int32_t>(part.size()),
                                                utf16(text), static_cast<int32_t>(text.size()),
                                                m_collator, nullptr, &status);
        } else {
            // The search object keeps pointers to the strings, which live for this call only.
            usearch_setText(m_search, utf16(text), static_cast<int32_t>(text.size()), &status);
            usearch_setPattern(m_search, utf16(part), static_cast<int32_t>(part.size()), &status);
        }
        if (U_FAILURE(status) || !m_search) {
            return text.contains(part, Qt::CaseInsensitive);
        }
        const int32_t position = usearch_first(m_search, &status);
        return U_SUCCESS(status) && position != USEARCH_DONE;
    }

private:
    UCollator* m_collator = nullptr;
    UStringSearch* m_search = nullptr;
};

ThreadCollator& collator() {
    thread_local ThreadCollator instance;
    return instance;
}

}  // namespace

bool localizedCaseInsensitiveContains(const QString& text, const QString& part) {
    return collator().contains(foldCase(text), foldCase(part));
}

bool localizedCaseInsensitiveEquals(const QString& a, const QString& b) {
    return collator().equals(foldCase(a), foldCase(b));
}

QString localizedFold(const QString& text) {
    return foldCase(text);
}

struct LocalizedPattern::Search {
    UStringSearch* handle = nullptr;
    ~Search() {
        if (handle) {
            usearch_close(handle);
        }
    }
};

LocalizedPattern::LocalizedPattern(const QString& part)
    : m_foldedPart(foldCase(part)), m_search(std::make_unique<Search>()) {}

LocalizedPattern::~LocalizedPattern() = default;

bool LocalizedPattern::foundInFolded(const QString& foldedText) {
    if (m_foldedPart.isEmpty() || foldedText.isEmpty()) {
        return false;
    }
    UCollator* collatorHandle = collator().handle();
    if (!collatorHandle) {
        return foldedText.contains(m_foldedPart, Qt::CaseInsensitive);
    }
    UErrorCode status = U_ZERO_ERROR;
    // The pattern stays prepared between calls; only the text changes, and it lives for this
    // call only.
    if (!m_search->handle) {
        m_search->handle = usearch_openFromCollator(
            utf16(m_foldedPart), static_cast<int32_t>(m_foldedPart.size()), utf16(foldedText),
            static_cast<int32_t>(foldedText.size()), collatorHandle, nullptr, &status);
    } else {
        usearch_setText(m_search->handle, utf16(foldedText),
                        static_cast<int32_t>(foldedText.size()), &status);
    }
    if (U_FAILURE(status) || !m_search->handle) {
        return foldedText.contains(m_foldedPart, Qt::CaseInsensitive);
    }
    const int32_t position = usearch_first(m_search->handle, &status);
    return U_SUCCESS(status) && position != USEARCH_DONE;
}

}  // namespace zelvar
