// An installed agent's definition as the installer reads it back: a property list (whatever
// lies in ~/Library/LaunchAgents) and a unit's ExecStart= words. Words quoted for the unit
// must split back into the same words.
#include "FuzzInput.h"
#include "agent/LaunchdServiceManager.h"
#include "agent/SystemdUserServiceManager.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    (void)zelvar::LaunchdServiceManager::readPlist(zelvar::fuzz::bytes(data, size));
    if (const auto text = zelvar::fuzz::utf8Text(data, size)) {
        using zelvar::SystemdUserServiceManager;
        const QStringList words = SystemdUserServiceManager::splitWords(*text);
        QStringList quoted;
        for (const QString& word : words) {
            quoted << SystemdUserServiceManager::quoteWord(word);
        }
        zelvar::fuzz::check(SystemdUserServiceManager::splitWords(quoted.join(u' ')) == words,
                            "quoted words split back into themselves");
    }
    return 0;
}
