#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

#include "UiFixture.h"
#include "ui/AddLimitSheet.h"
#include "ui/AddWhitelistSheet.h"
#include "ui/EditLimitSheet.h"
#include "ui/ProcessChoice.h"
#include "ui/ProcessLimitEditorSheet.h"
#include "ui/ProcessPicker.h"
#include "ui/WhitelistView.h"
#include "ui/widgets/LimitSlider.h"

namespace {

ProcessInfo process(const QString& name, double memoryMB) {
    ProcessInfo info;
    info.name = name;
    info.memoryMB = memoryMB;
    return info;
}

// Chooses `name` in the picker's menu, as the user does.
void choose(ProcessPicker& picker, const QString& name) {
    const int index = picker.menu()->findData(name);
    ASSERT_GE(index, 0) << name.toStdString();
    picker.menu()->setCurrentIndex(index);
}

using LimitSheetsTest = UiFixture;

}  // namespace

TEST(ProcessChoice, OneEntryPerNameWithItsLargestSizeLargestFirstStably) {
    const QList<ProcessInfo> processes{process("helper", 10), process("b", 50),
                                       process("helper", 70), process("c", 50),
                                       process("helper", 20), process("a", 50)};
    EXPECT_EQ(processesWithRAM(processes),
              (QList<ProcessRAM>{{"helper", 70}, {"b", 50}, {"c", 50}, {"a", 50}}));

    EXPECT_EQ(selectedProcess("chosen", "typed"), "chosen");
    EXPECT_EQ(selectedProcess("", "typed"), "typed");
    EXPECT_EQ(selectedProcess("", " "), " ");
}

TEST(WhitelistValues, SortedFilterAndRunningCounts) {
    const std::set<QString> whitelist{"zsh", "Firefox", "firefox-bin", "bash"};
    EXPECT_EQ(filteredWhitelist(whitelist, ""),
              QStringList({"Firefox", "bash", "firefox-bin", "zsh"}));
    EXPECT_EQ(filteredWhitelist(whitelist, "FIREFOX"), QStringList({"Firefox", "firefox-bin"}));

    const QList<ProcessInfo> running{process("zsh", 5), process("zsh-helper", 5),
                                     process("bash", 5), process("zsh", 7)};
    EXPECT_EQ(runningText(instanceCount(running, "bash")), "Running (1 instance)");
    EXPECT_EQ(runningText(instanceCount(running, "zsh")), "Running (2 instances)");
    EXPECT_EQ(runningText(instanceCount(running, "Firefox")), "Not running");
}

TEST(LimitSlider, StartsOffTheStepsAndSnapsFromTheLowerEndWhenMoved) {
    LimitSlider slider(150, 80);
    EXPECT_EQ(slider.value(), 150);
    EXPECT_EQ(slider.valueText(), "150 MB");

    slider.slider()->setValue(slider.slider()->value() + 1);
    EXPECT_EQ(std::fmod(slider.value() - LimitSlider::kMinimumMB, LimitSlider::kStepMB), 0.0);
    EXPECT_EQ(slider.valueText(), QString::number(slider.value()) + " MB");
    slider.slider()->setValue(slider.slider()->minimum());
    EXPECT_EQ(slider.value(), 100);
    slider.slider()->setValue(slider.slider()->maximum());
    EXPECT_EQ(slider.value(), 32768);
    slider.slider()->setValue(slider.slider()->maximum() - 1);
    EXPECT_EQ(slider.value(), 32700);
}

TEST_F(LimitSheetsTest, AddLimitTakesTheChosenProcessOverTheTypedNameAndSavesIt) {
    sample({{"builder", 300}, {"builder", 900}, {"editor", 500}});
    AddLimitSheet sheet(processMonitor(), config());
    ProcessPicker& picker = *sheet.picker();
    EXPECT_EQ(picker.menu()->itemText(0), "-- Choose from list --");
    EXPECT_EQ(picker.menu()->itemText(1), "builder — 900 MB");
    EXPECT_EQ(sheet.limitSlider()->value(), 1024);
    EXPECT_FALSE(sheet.autoKillToggle()->isChecked());
    EXPECT_FALSE(sheet.addButton()->isEnabled());

    picker.customField()->setText("typed");
    choose(picker, "editor");
    sheet.limitSlider()->slider()->setValue(LimitSlider::positionFor(2000));
    sheet.autoKillToggle()->setChecked(true);
    sheet.addButton()->click();

    EXPECT_EQ(sheet.result(), QDialog::Accepted);
    ASSERT_EQ(savedConfig().limits.size(), 1);
    const ProcessLimit saved = savedConfig().limits.first();
    EXPECT_EQ(saved.processName, "editor");
    EXPECT_EQ(saved.limitMB, 2000);
    EXPECT_TRUE(saved.autoKillEnabled);
}

// The sheet doesn't trim: a name of one blank enables "Add Limit" and reaches the
// configuration, whose own rule (trim, then refuse an empty name) leaves the file unchanged.
TEST_F(LimitSheetsTest, AddLimitIsEnabledByACustomNameOfOneBlank) {
    AddLimitSheet sheet(processMonitor(), config());
    sheet.picker()->customField()->setText(" ");
    ASSERT_TRUE(sheet.addButton()->isEnabled());
    sheet.addButton()->click();
    EXPECT_EQ(sheet.result(), QDialog::Accepted);
    EXPECT_TRUE(savedConfig().limits.isEmpty());

    AddLimitSheet second(processMonitor(), config());
    second.picker()->customField()->setText(" not running ");
    second.addButton()->click();
    ASSERT_EQ(savedConfig().limits.size(), 1);
    EXPECT_EQ(savedConfig().limits.first().processName, "not running");
    EXPECT_EQ(savedConfig().limits.first().limitMB, 1024);
    EXPECT_FALSE(savedConfig().limits.first().autoKillEnabled);
}

TEST_F(LimitSheetsTest, AddWhitelistKeepsAChosenNameWhoseProcessesEnded) {
    sample({{"daemon", 50}});
    AddWhitelistSheet sheet(processMonitor(), config());
    EXPECT_FALSE(sheet.addButton()->isEnabled());
    choose(*sheet.picker(), "daemon");
    sheet.picker()->customField()->setText("ignored");
    sample({{"other", 50}});
    EXPECT_EQ(sheet.picker()->selectedProcess(), "daemon");
    sheet.addButton()->click();
    EXPECT_EQ(savedConfig().whitelistedProcesses, std::set<QString>{"daemon"});
}

TEST_F(LimitSheetsTest, EditorSetsANewLimitAtItsStartingValues) {
    ProcessLimitEditorSheet sheet({.processName = "fresh"}, config());
    EXPECT_EQ(sheet.title(), "Set RAM Limit");
    EXPECT_EQ(sheet.limitSlider()->valueText(), "1024 MB");
    EXPECT_FALSE(sheet.autoKillToggle()->isChecked());
    EXPECT_EQ(sheet.removeButton(), nullptr);
    sheet.saveButton()->click();

    const std::optional<ProcessLimit> saved =
        ConfigManager(config().configPath(), m_fake.clock).limitForProcess("fresh");
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->limitMB, 1024);
    EXPECT_FALSE(saved->autoKillEnabled);
}

TEST_F(LimitSheetsTest, EditorUpdatesOrRemovesTheExistingLimit) {
    config().addLimit("worker", 150, true);
    const ProcessLimit existing = *config().limitForProcess("worker");
    {
        ProcessLimitEditorSheet sheet({.processName = "worker", .existingLimit = existing},
                                      config());
        EXPECT_EQ(sheet.title(), "Edit RAM Limit");
        EXPECT_EQ(sheet.limitSlider()->valueText(), "150 MB");
        EXPECT_TRUE(sheet.autoKillToggle()->isChecked());
        QSlider& slider = *sheet.limitSlider()->slider();
        slider.setValue(slider.value() + 1);
        sheet.autoKillToggle()->setChecked(false);
        const double moved = sheet.limitSlider()->value();
        EXPECT_EQ(std::fmod(moved - 100, 100), 0.0);
        sheet.saveButton()->click();

        ASSERT_EQ(savedConfig().limits.size(), 1);
        EXPECT_EQ(savedConfig().limits.first().id, existing.id);
        EXPECT_EQ(savedConfig().limits.first().limitMB, moved);
        EXPECT_FALSE(savedConfig().limits.first().autoKillEnabled);
    }
    ProcessLimitEditorSheet sheet({.processName = "worker", .existingLimit = existing}, config());
    ASSERT_NE(sheet.removeButton(), nullptr);
    sheet.removeButton()->click();
    EXPECT_TRUE(savedConfig().limits.isEmpty());
}

TEST_F(LimitSheetsTest, EditLimitSheetWritesTheLimitOfTheSameIdOnlyOnSave) {
    config().addLimit("first", 500, false);
    config().addLimit("second", 700, false);
    const ProcessLimit second = config().config().limits.at(1);
    {
        EditLimitSheet cancelled(second, config());
        cancelled.limitSlider()->slider()->setValue(0);
        cancelled.reject();
    }
    EXPECT_EQ(savedConfig().limits.at(1).limitMB, 700);

    EditLimitSheet sheet(second, config());
    sheet.limitSlider()->slider()->setValue(LimitSlider::positionFor(4000));
    sheet.autoKillToggle()->setChecked(true);
    sheet.saveButton()->click();
    const MonitorConfig saved = savedConfig();
    EXPECT_EQ(saved.limits.at(0), config().config().limits.at(0));
    EXPECT_EQ(saved.limits.at(1).limitMB, 4000);
    EXPECT_TRUE(saved.limits.at(1).autoKillEnabled);
    EXPECT_EQ(saved.limits.at(1).createdAt, second.createdAt);
}
