#pragma once

#include <QStringView>

namespace zelvar {

// The blanks of tool output whose columns are padded with spaces and tabs: nothing else
// counts, so that a carriage return or a vertical tab stays part of the text it stands in.
inline bool isSpaceOrTab(QChar c) {
    return c == u' ' || c == u'\t';
}

// `text` without the spaces and tabs at either end.
inline QStringView trimSpacesAndTabs(QStringView text) {
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isSpaceOrTab(text[begin])) {
        ++begin;
    }
    while (end > begin && isSpaceOrTab(text[end - 1])) {
        --end;
    }
    return text.sliced(begin, end - begin);
}

}  // namespace zelvar
