#include "Platform/Machine/TrashCan.h"
#include "State/Threads/BusyThreads.h"
#include "Window/UninstallWindowTest.h"

#include <QMimeData>

namespace tarvik::test {

namespace {

class UninstallTab : public UninstallWindowTest {
protected:
    UninstallTab() { world.host.trash = makeRootedTrashCan(world.home); }

    void drop(const std::function<void(QMimeData&)>& fill) {
        QMimeData data;
        fill(data);
        const QPoint place(900, 500);
        QDragEnterEvent enter(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&opened->window(), &enter);
        QDropEvent event(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&opened->window(), &event);
        EXPECT_TRUE(!event.isAccepted() || event.dropAction() == Qt::CopyAction) << "the sender keeps what it drops";
    }
    void expectError(const QString& text) {
        EXPECT_TRUE(opened->waitForText("errorToast/toastText", text)) << opened->state().lastError().toStdString();
        opened->state().clearError();
    }
    static QUrl urlTo(const fs::path& path) { return QUrl::fromLocalFile(QString::fromStdString(path.native())); }
};

TEST_F(UninstallTab, SaysWhatItIsForWhileNothingIsChosen) {
    app("Atlas");
    auto& window = openTab();
    EXPECT_EQ(window.text("heroTitle"), "Uninstall applications");
    EXPECT_EQ(window.text("heroText"),
              "Select applications. Review service files.\nUninstall any application completely.");
    EXPECT_EQ(window.text("dropZoneText"), "Drag & Drop an application to quickly uninstall");
    EXPECT_FALSE(window.isShown("uninstallPlan"));
    EXPECT_FALSE(window.isShown("scanningServiceFiles"));
    EXPECT_FALSE(window.isShown("uninstallLog"));
}

TEST_F(UninstallTab, ListsApplicationsWhenItIsFirstSeen) {
    app("Atlas");
    auto& window = open();
    EXPECT_TRUE(tab().uninstallApps().empty());
    window.openTab("uninstall");
    EXPECT_TRUE(window.waitUntilShown("app-Atlas"));
    settle();
    EXPECT_EQ(window.text("uninstallFilter"), "All Applications");
    EXPECT_EQ(window.text("uninstallSort"), "Date");
    EXPECT_EQ(window.text("app-Atlas/rowSize"), "12 KB");
    EXPECT_FALSE(window.isShown("app-Atlas/rowBadge"));
}

TEST_F(UninstallTab, SaysThatItScansWhileNothingIsListedYet) {
    app("Atlas");
    auto& window = open();
    BusyThreads busyThreads(BusyThreads::all(), Priority::userInitiated);
    window.openTab("uninstall");
    EXPECT_EQ(window.text("scanningApps"), "Scanning apps…");
    EXPECT_TRUE(window.isShown("uninstallSpinner"));
    EXPECT_FALSE(window.isShown("noUninstallApps"));
    EXPECT_FALSE(window.isShown("refreshUninstallButton"));
    busyThreads.end();
    EXPECT_TRUE(window.waitUntilShown("app-Atlas"));
    EXPECT_FALSE(window.isShown("scanningApps"));
    settle();
}

TEST_F(UninstallTab, SaysThatThereAreNone) {
    auto& window = openTab();
    EXPECT_EQ(window.text("noUninstallApps/emptyTitle"), "No applications found.");
    app("Atlas");
    window.click("refreshUninstallButton");
    EXPECT_TRUE(window.waitUntilShown("app-Atlas"));
    settle();
    window.click("uninstallSearch");
    window.type("nothing");
    EXPECT_EQ(window.text("noUninstallApps/emptyTitle"), "No apps match this view.");
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntilShown("app-Atlas"));
}

TEST_F(UninstallTab, SearchesFiltersAndSorts) {
    app("Atlas");
    app("Brush", 9'000'000);
    makeFolder(app("Driver") / "Contents/Library/SystemExtensions/driver.systemextension");
    auto& window = openTab();
    window.click("uninstallSearch");
    window.type("ORG.BRUSH");
    EXPECT_TRUE(window.waitUntilHidden("app-Atlas"));
    EXPECT_TRUE(window.isShown("app-Brush"));
    window.press(Qt::Key_Escape);
    window.click("uninstallFilter");
    window.click("choice-3");
    EXPECT_EQ(window.text("uninstallFilter"), "Incompatible Applications");
    EXPECT_TRUE(window.waitUntilHidden("app-Atlas"));
    EXPECT_TRUE(window.isShown("app-Driver"));
    window.click("uninstallFilter");
    window.click("choice-0");
    window.click("uninstallSort");
    window.click("choice-2");
    EXPECT_EQ(window.text("uninstallSort"), "Size");
    EXPECT_TRUE(window.waitUntilShown("header-5 MB – 100 MB"));
    EXPECT_TRUE(window.isShown("header-Less than 5 MB"));
    EXPECT_LT(window.item("app-Brush").y(), window.item("app-Atlas").y());
}

TEST_F(UninstallTab, OpensAGroupAndTicksItsMembers) {
    for (const char* name : {"Draw", "Write"})
        makeBundle(applications / (std::string(name) + ".app"),
                   {{"CFBundleIdentifier", std::string("com.acme.") + name}});
    auto& window = openTab();
    EXPECT_EQ(window.text("group-Acme Group/groupCount"), "2 Applications");
    EXPECT_FALSE(window.isShown("app-Draw"));
    window.click("group-Acme Group");
    EXPECT_TRUE(window.waitUntilShown("app-Draw"));
    window.click("app-Draw/markBox");
    const auto stateOf = [&](const char* box) { return window.item(box).property("checkState").toInt(); };
    EXPECT_EQ(stateOf("group-Acme Group/groupBox"), Qt::PartiallyChecked);
    window.click("group-Acme Group/groupBox");
    EXPECT_EQ(stateOf("app-Write/markBox"), Qt::Checked);
    window.click("group-Acme Group/groupChevron");
    EXPECT_TRUE(window.waitUntilHidden("app-Draw"));
    EXPECT_FALSE(window.isShown("uninstallPlan")) << "a tick chooses nothing";
}

TEST_F(UninstallTab, ShowsWhatWouldGo) {
    app("Atlas", 3'000'000);
    makeServiceFiles("Atlas");
    auto& window = openTab();
    choose("Atlas");
    EXPECT_EQ(window.text("planName"), "Atlas");
    EXPECT_EQ(window.text("planItems"), "8 items");
    EXPECT_EQ(window.text("planFilesTitle"), "Apps files and folders");
    EXPECT_EQ(window.text("planVerification/metadataValue"), "Developer ID");
    EXPECT_EQ(window.text("planDeveloper/metadataValue"), "Unknown");
    EXPECT_FALSE(window.isShown("planVersion"));
    window.click("planMoreInfoButton");
    EXPECT_EQ(window.text("planVersion/metadataValue"), "1.2");
    EXPECT_EQ(window.text("planBundleId/metadataValue"), "org.Atlas.app");
    EXPECT_EQ(window.text("planKind/metadataValue"), "Application");
    EXPECT_EQ(window.text("planPath/metadataValue").toStdString(), (applications / "Atlas.app").native());
    EXPECT_EQ(window.text("planWarning-0"), "Launch daemons detected; requires admin authentication.");
    EXPECT_EQ(window.text("section-Application Support/sectionDetail"), "2 items · 2 MB");
    EXPECT_EQ(window.text("checkedCountFigure/figureValue"), "7");
    EXPECT_EQ(window.text("checkedCountFigure/figureCaption"), "selected");
}

TEST_F(UninstallTab, PlansTheLinkThatStandsForAMovedApplication) {
    const fs::path copy = backup / "ExternalTarvik/Apps/Atlas.app";
    makeBundle(copy, {{"CFBundleIdentifier", identifierOf("Atlas")}});
    makeLink(applications / "Atlas.app", copy);
    openTab();
    choose("Atlas");
    const auto plan = tab().uninstallPlan();
    ASSERT_TRUE(plan);
    ASSERT_EQ(plan->candidates.size(), 2U);
    EXPECT_EQ(plan->candidates[0].path, applications / "Atlas.app");
    EXPECT_TRUE(plan->candidates[0].defaultSelected);
    EXPECT_EQ(plan->candidates[1].path, copy);
    EXPECT_FALSE(plan->candidates[1].defaultSelected);
}

TEST_F(UninstallTab, OpensASectionAndTicksItsItems) {
    app("Atlas");
    makeServiceFiles("Atlas");
    auto& window = openTab();
    choose("Atlas");
    EXPECT_FALSE(window.isShown("candidate-Atlas"));
    window.click("section-Application Support/sectionChevron");
    EXPECT_TRUE(window.waitUntilShown("candidate-Atlas"));
    EXPECT_EQ(window.text("candidate-Atlas/candidatePath"), "~/Library/Application Support/Atlas");
    EXPECT_EQ(window.text("candidate-Atlas/candidateReason"), "Matches app name");
    EXPECT_EQ(window.text("candidate-Atlas/candidateSize"), "2 MB");
    EXPECT_FALSE(window.isShown("candidate-Atlas/candidateAdmin"));
    const auto sectionState = [&] {
        return window.item("section-Application Support/sectionBox").property("checkState").toInt();
    };
    EXPECT_EQ(sectionState(), Qt::Checked);
    window.click("candidate-Atlas/candidateBox");
    EXPECT_EQ(sectionState(), Qt::PartiallyChecked);
    EXPECT_EQ(window.text("checkedCountFigure/figureValue"), "6");
    window.click("section-Application Support/sectionBox");
    EXPECT_EQ(sectionState(), Qt::Checked);
    window.click("section-Application Support/sectionBox");
    EXPECT_EQ(sectionState(), Qt::Unchecked);
    EXPECT_EQ(window.text("checkedCountFigure/figureValue"), "5");
    window.click("section-Launch Daemons/sectionChevron");
    EXPECT_EQ(window.text("candidate-org.Atlas.app.plist/candidateAdmin"), "admin");
}

TEST_F(UninstallTab, RemovesAndPutsBack) {
    const fs::path bundle = app("Atlas");
    makeServiceFiles("Atlas");
    const std::string before = pictureOf(applications) + pictureOf(world.home / "Library/Caches");
    auto& window = openTab();
    choose("Atlas");
    window.click("removeButton");
    EXPECT_TRUE(window.waitUntilShown("alertTitle"));
    EXPECT_EQ(window.text("alertTitle"), "Uninstall Atlas?");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Uninstalled Atlas — 7 items."));
    EXPECT_TRUE(window.waitUntilShown("past-Atlas"));
    settle();
    EXPECT_FALSE(fs::exists(bundle));
    EXPECT_FALSE(window.isShown("app-Atlas"));
    EXPECT_TRUE(window.text("past-Atlas/pastDetail").contains(" · 7 items · "));
    window.click("past-Atlas/putBackButton");
    window.click("alertButton-0");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Put back 7 items."));
    settle();
    EXPECT_EQ(window.text("past-Atlas/pastState"), "put back");
    EXPECT_FALSE(window.isShown("past-Atlas/putBackButton"));
    EXPECT_EQ(pictureOf(applications) + pictureOf(world.home / "Library/Caches"), before);
    EXPECT_TRUE(window.isShown("app-Atlas"));
}

TEST_F(UninstallTab, KeepsTheTopOfAPlanInSightHoweverLateItIsLaidOut) {
    app("Atlas");
    makeServiceFiles("Atlas");
    auto& window = openTab(small);
    choose("Atlas");
    QQuickItem& list = window.item("planList");
    auto* header = list.property("headerItem").value<QQuickItem*>();
    for (int growth = 1; growth <= 3; ++growth) {
        header->setImplicitHeight(header->implicitHeight() + 100);
        // What follows at once is done before the next frame lays the list out.
        QCoreApplication::sendPostedEvents();
        EXPECT_TRUE(window.waitUntil([&] { return list.property("originY").toDouble() == -header->height(); }));
        EXPECT_TRUE(window.waitUntil([&] { return list.property("contentY") == list.property("originY"); })) << growth;
    }
}

TEST_F(UninstallTab, RehearsesAndShowsTheLog) {
    app("Atlas");
    auto& window = openTab();
    choose("Atlas");
    window.click("dryRunButton");
    EXPECT_TRUE(window.waitForText("infoToast/toastText", "Dry-run complete (1 item)."));
    settle();
    EXPECT_TRUE(window.isShown("uninstallPlan"));
    EXPECT_TRUE(window.isShown("logLine"));
    window.click("foldLogButton");
    EXPECT_TRUE(window.waitUntilHidden("logLine"));
}

TEST_F(UninstallTab, OffersNoRemovalOfWhatBelongsToTheSystem) {
    const fs::path mail = world.folder / "System/Applications/Mail.app";
    makeBundle(mail, {{"CFBundleIdentifier", "com.apple.mail"}});
    auto& window = openTab();
    EXPECT_FALSE(window.isShown("app-Mail"));
    drop([&](QMimeData& data) { data.setUrls({urlTo(mail)}); });
    EXPECT_TRUE(window.waitUntilShown("uninstallPlan"));
    settle();
    EXPECT_FALSE(window.isEnabled("removeButton"));
    EXPECT_TRUE(window.isEnabled("dryRunButton"));
    EXPECT_TRUE(window.text("planWarning-0").startsWith("Refusing system app uninstall: "));
    window.click("closePlanButton");
    EXPECT_TRUE(window.waitUntilShown("heroTitle"));
}

TEST_F(UninstallTab, RestsWhileSomethingElseIsUnderWay) {
    app("Atlas");
    auto& window = openTab();
    choose("Atlas");
    EXPECT_TRUE(window.isEnabled("removeButton"));
    auto held = window.state().act({"Quit?", "", {"Quit", "Cancel"}});
    EXPECT_FALSE(window.isEnabled("removeButton"));
    EXPECT_TRUE(window.isEnabled("dryRunButton"));
    held.reset();
    EXPECT_TRUE(window.isEnabled("removeButton"));
}

TEST_F(UninstallTab, RestsWhileARunIsUnderWay) {
    app("Atlas");
    auto& window = openTab();
    choose("Atlas");
    BusyThreads busyThreads(BusyThreads::all(), Priority::userInitiated);
    window.click("dryRunButton");
    EXPECT_TRUE(window.waitUntilShown("uninstallingSpinner"));
    EXPECT_FALSE(window.state().isBusy()) << "a rehearsal touches nothing";
    EXPECT_FALSE(window.isEnabled("dryRunButton"));
    EXPECT_FALSE(window.isEnabled("removeButton"));
    busyThreads.end();
    EXPECT_TRUE(window.waitUntilHidden("uninstallingSpinner"));
    EXPECT_TRUE(window.isEnabled("dryRunButton"));
    EXPECT_TRUE(window.isEnabled("removeButton"));
}

TEST_F(UninstallTab, TakesADropInEveryForm) {
    const fs::path bundle = app("Atlas");
    const QString path = QString::fromStdString(bundle.native());
    auto& window = openTab();
    const std::function<void(QMimeData&)> forms[] = {
        [&](QMimeData& data) { data.setUrls({urlTo(bundle)}); },
        [&](QMimeData& data) { data.setText(path + "\n"); },
        [&](QMimeData& data) { data.setText(urlTo(bundle).toString()); },
        [&](QMimeData& data) { data.setData("NSFilenamesPboardType", path.toUtf8()); },
        [&](QMimeData& data) {
            QList<QUrl> urls = {urlTo(bundle)};
            for (int number = 0; number < 199; ++number) urls.push_back(urlTo(world.home / std::to_string(number)));
            data.setUrls(urls);
        },
    };
    for (const auto& form : forms) {
        drop(form);
        EXPECT_TRUE(window.waitForText("planName", "Atlas"));
        settle();
        window.click("closePlanButton");
        EXPECT_TRUE(window.waitUntilShown("heroTitle"));
    }
}

TEST_F(UninstallTab, SaysThatWhatWasDroppedIsNoApplication) {
    const fs::path vanished = app("Vanished");
    makeFile(world.home / "Letter.txt");
    auto& window = openTab();
    drop([&](QMimeData& data) { data.setUrls({urlTo(world.home / "Letter.txt")}); });
    expectError("Not an app bundle: Letter.txt");
    drop([&](QMimeData& data) { data.setUrls({QUrl("https://example.org/Atlas.app")}); });
    expectError("Not an app bundle: Atlas.app");
    drop([&](QMimeData& data) { data.setUrls({QUrl(urlTo(vanished).toString() + "%00.txt")}); });
    expectError("Not an app bundle: Vanished.app%00.txt");
    drop([&](QMimeData& data) { data.setText("just a text"); });
    expectError("Not an app bundle: just a text");
    fs::remove_all(vanished);
    drop([&](QMimeData& data) { data.setUrls({urlTo(vanished)}); });
    expectError("Not an app bundle: Vanished.app");
    drop([&](QMimeData& data) { data.setData("image/png", "\x89PNG"); });
    settle();
    EXPECT_FALSE(window.isShown("errorToast"));
    EXPECT_TRUE(window.isShown("heroTitle"));
}

TEST_F(UninstallTab, IsWalkedWithKeysAlone) {
    app("Atlas");
    makeServiceFiles("Atlas");
    auto& window = openTab();
    window.item("uninstallSearch").forceActiveFocus(Qt::TabFocusReason);
    for (const char* stop : {"refreshUninstallButton", "uninstallFilter", "uninstallSort", "uninstallList"}) {
        window.press(Qt::Key_Tab);
        EXPECT_TRUE(window.hasFocus(stop)) << stop;
    }
    // The header, the application.
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntilShown("uninstallPlan"));
    settle();
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.item("planList").hasActiveFocus());
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Right);
    EXPECT_TRUE(window.waitUntilShown("candidate-Atlas"));
    window.press(Qt::Key_Space);
    EXPECT_EQ(window.text("checkedCountFigure/figureValue"), "5");
    window.press(Qt::Key_Left);
    EXPECT_TRUE(window.waitUntilHidden("candidate-Atlas"));
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("closePlanButton"));
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("planMoreInfoButton"));
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntilShown("planVersion"));
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("dryRunButton"));
    window.press(Qt::Key_Tab);
    EXPECT_TRUE(window.hasFocus("removeButton"));
}

TEST_F(UninstallTab, OpensAMenuWithKeys) {
    app("Atlas");
    auto& window = openTab();
    window.item("uninstallSort").forceActiveFocus(Qt::TabFocusReason);
    window.press(Qt::Key_Down);
    EXPECT_TRUE(window.waitUntilShown("choiceMenu"));
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Return);
    EXPECT_TRUE(window.waitUntil([&] { return tab().list()->sort() == UninstallSort::dateOldest; }));
    EXPECT_TRUE(window.waitUntil([&] { return window.hasFocus("uninstallSort"); }));
    window.press(Qt::Key_Space);
    EXPECT_TRUE(window.waitUntilShown("choiceMenu"));
    window.press(Qt::Key_Escape);
    EXPECT_TRUE(window.waitUntilHidden("choiceMenu"));
    EXPECT_EQ(tab().list()->sort(), UninstallSort::dateOldest);
}

TEST_F(UninstallTab, SpaceTicksAndReturnChooses) {
    app("Atlas");
    auto& window = openTab();
    window.item("uninstallList").forceActiveFocus(Qt::TabFocusReason);
    window.press(Qt::Key_Down);
    window.press(Qt::Key_Space);
    EXPECT_EQ(tab().list()->markedIds().size(), 1U);
    EXPECT_FALSE(tab().selectedUninstallApp());
    window.press(Qt::Key_Return);
    EXPECT_TRUE(tab().selectedUninstallApp());
    settle();
}

}  // namespace

}  // namespace tarvik::test
