#include <QCoreApplication>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>

#include "audio/AudioMonitor.h"
#include "audio/AudioPrivilegeManager.h"
#include "compose/Monitors.h"
#include "focus/FocusMonitor.h"
#include "support/FakePorts.h"
#include "support/Testing.h"
#include "ui/audio/AudioEventRow.h"
#include "ui/audio/AudioStatusCard.h"
#include "ui/audio/AudioView.h"
#include "ui/focus/FocusEventRow.h"
#include "ui/focus/FocusView.h"
#include "ui/widgets/HistorySection.h"

namespace zelvar::test {
namespace {

// The audio and focus monitors as the app composes them, over fake ports, with both tabs on
// screen so that they follow every change.
class AudioFocusViewTest : public ::testing::Test {
protected:
    AudioFocusViewTest() {
        m_audioView.resize(900, 600);
        m_audioView.show();
        m_focusView.resize(900, 600);
        m_focusView.show();
    }

    AudioMonitor& audio() { return *m_monitors.audioMonitor(); }
    FocusMonitor& focus() { return *m_monitors.focusMonitor(); }
    // Moves time on by `seconds`, then the desktop gives the focus to `name`.
    void activateAfter(double seconds, const QString& name) {
        m_fake.clock.advance(seconds);
        m_fake.workspace.activate(name);
    }
    QStringList rowTitles(const QAbstractItemModel& model) {
        QStringList titles;
        for (int row = 0; row < model.rowCount(); ++row) {
            titles << model.index(row, 0).data().toString();
        }
        return titles;
    }
    int consentRequests() {
        int count = 0;
        for (const CommandRequest& request : m_fake.commands.requests()) {
            count += request.program == "/usr/bin/pkexec";
        }
        return count;
    }

    FakePorts m_fake;
    Monitors m_monitors{m_fake.ports(), Monitors::Mode::Headless,
                        Monitors::Parts(Monitors::Part::Audio) | Monitors::Part::Focus};
    AudioView m_audioView{audio()};
    FocusView m_focusView{focus()};
};

TEST_F(AudioFocusViewTest, HistoriesCountEveryEventListTheNewestHundredAndKeepTheirPlace) {
    for (const AudioDeviceType type : allAudioDeviceTypes()) {
        EXPECT_FALSE(m_audioView.history(type)->showsList());
        EXPECT_EQ(m_audioView.history(type)->countText(), "0 events");
    }
    // The device's name in lower case, the microphone's too.
    EXPECT_EQ(m_audioView.history(AudioDeviceType::Input)->emptyMessage(),
              "No microphone activity recorded yet");
    EXPECT_EQ(m_audioView.history(AudioDeviceType::Output)->emptyMessage(),
              "No speaker activity recorded yet");

    for (int i = 0; i < 150; ++i) {
        audio().addOutputEvent(QString("App %1").arg(i), std::nullopt, "process scan");
    }
    HistorySection& speaker = *m_audioView.history(AudioDeviceType::Output);
    const auto& model = m_audioView.historyModel(AudioDeviceType::Output);
    EXPECT_EQ(speaker.countText(), "150 events");
    ASSERT_EQ(model.rowCount(), AudioView::kShownEvents);
    EXPECT_EQ(model.at(0).appName, "App 149");
    EXPECT_EQ(model.at(99).appName, "App 50");
    EXPECT_FALSE(m_audioView.history(AudioDeviceType::Input)->showsList());

    // The cards show the monitor's state: the speaker active with its application, the
    // microphone idle with none.
    const AudioStatusCard& output = *m_audioView.card(AudioDeviceType::Output);
    const AudioStatusCard& input = *m_audioView.card(AudioDeviceType::Input);
    EXPECT_EQ(std::tuple(output.isActive(), output.statusText(), output.mostRecentAppText()),
              std::tuple(true, QString("App 149"), QString("App 149")));
    EXPECT_EQ(std::tuple(input.isActive(), input.statusText(), input.mostRecentAppText()),
              std::tuple(false, QString("Microphone idle"), QString()));

    // Scrolled down with a row selected: new events arrive above, and what the user looks at
    // stays where it is.
    QListView& list = *speaker.listView();
    list.setCurrentIndex(model.index(40, 0));
    list.scrollTo(model.index(30, 0), QAbstractItemView::PositionAtTop);
    const QString viewed = list.indexAt(QPoint(4, 4)).data().toString();
    ASSERT_NE(viewed, "App 149");
    audio().addOutputEvent("Late", QString("org.example.late"), "CoreAudio log");
    audio().addOutputEvent("Later", std::nullopt, "process scan");
    QCoreApplication::processEvents();
    EXPECT_EQ(speaker.countText(), "152 events");
    EXPECT_EQ(model.rowCount(), AudioView::kShownEvents);
    EXPECT_EQ(list.currentIndex().row(), 42);
    EXPECT_EQ(list.currentIndex().data().toString(), "App 109");
    EXPECT_EQ(list.indexAt(QPoint(4, 4)).data().toString(), viewed);
    EXPECT_EQ(rowTitles(model).mid(0, 3), QStringList({"Later", "Late", "App 149"}));
    EXPECT_EQ(AudioEventRow::content(model.at(1)).caption,
              "Speaker · CoreAudio log · org.example.late");
    EXPECT_EQ(AudioEventRow::content(model.at(0)).caption, "Speaker · process scan");
}

TEST_F(AudioFocusViewTest, TheEnableStripStaysAfterARefusalAndAsksAgainEachTime) {
    // The consent is asked for the user running the program.
    const QByteArray userBefore = qgetenv("USER");
    qputenv("USER", "ada");
    const QString user = AudioPrivilegeManager::currentUserName();
    // pkexec's answer when the user dismisses its dialog.
    const CommandRequest consent = AudioPrivilegeManager::consentRequest(
        AudioPrivilegeManager::installShellText(user, m_fake.profile), m_fake.profile);
    m_fake.commands.respond((QStringList{consent.program} + consent.arguments).join(' '), "", 126);
    ASSERT_TRUE(m_audioView.showsEnableStrip());
    EXPECT_EQ(m_audioView.enableButton()->text(), "Enable");
    EXPECT_FALSE(m_audioView.showsNotGranted());
    m_audioView.enableButton()->click();
    EXPECT_EQ(consentRequests(), 1);
    EXPECT_TRUE(m_audioView.showsEnableStrip());
    EXPECT_TRUE(m_audioView.showsNotGranted());
    m_audioView.enableButton()->click();
    EXPECT_EQ(consentRequests(), 2);
    EXPECT_TRUE(m_audioView.showsEnableStrip());
    qputenv("USER", userBefore);
}

TEST_F(AudioFocusViewTest, FocusHistoryShowsEachChangeWithTheTimeThePreviousAppHeldIt) {
    EXPECT_FALSE(m_focusView.history()->showsList());
    EXPECT_EQ(m_focusView.history()->emptyMessage(), "No focus changes recorded yet");
    m_fake.workspace.setFrontmost(RunningApplication{.localizedName = "Editor"});
    focus().start();
    EXPECT_EQ(m_focusView.currentAppText(), "Editor");

    // The first change already has where the focus came from and how long it stayed there.
    activateAfter(4.5, "Browser");
    ASSERT_EQ(m_focusView.historyModel().rowCount(), 1);
    const EventRowContent first =
        FocusEventRow::content(m_focusView.historyModel().at(0), QColor());
    EXPECT_EQ(first.title, "Browser");
    EXPECT_EQ(first.caption, "from Editor");
    ASSERT_EQ(first.trailing.size(), 2);
    EXPECT_EQ(first.trailing.first(), "4.5s");

    // Back within three seconds: the visit reads as a theft, until the next change.
    activateAfter(2.0, "Editor");
    EXPECT_EQ(m_focusView.stolenText(), "Focus stolen by Browser");
    activateAfter(10.0, "Mail");
    EXPECT_EQ(m_focusView.stolenText(), "");
    EXPECT_EQ(std::tuple(m_focusView.currentAppText(), m_focusView.changesText(),
                         m_focusView.history()->countText()),
              std::tuple(QString("Mail"), QString("3"), QString("3 events")));
    EXPECT_EQ(rowTitles(m_focusView.historyModel()), QStringList({"Mail", "Editor", "Browser"}));

    // The duration's units switch at one second and at one minute; a duration rounded up to a
    // second by its format still counts as below one.
    QStringList durations;
    for (const double seconds : {0.9996, 1.0, 59.96, 60.0}) {
        const FocusEvent event(m_fake.clock.now(), "B", QString("A"), seconds);
        durations << FocusEventRow::content(event, QColor()).trailing.first();
    }
    EXPECT_EQ(durations, QStringList({"1000ms", "1.0s", "60.0s", "1.0m"}));
    // Without a previous application or a duration, only the time is shown.
    const EventRowContent bare = FocusEventRow::content(
        FocusEvent(m_fake.clock.now(), "B", std::nullopt, std::nullopt), QColor());
    EXPECT_EQ(std::tuple(bare.caption, bare.trailing.size()), std::tuple(QString(), 1));
}

}  // namespace
}  // namespace zelvar::test
