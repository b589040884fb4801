#include "Appearance.h"
#include "CloseGuard.h"
#include "HealthMeasurement.h"
#include "Options.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Processes/StandardStreams.h"
#include "ProcessAge.h"
#include "RefreshMeasurement.h"
#include "ShownTab.h"
#include "State/Apps/AppsState.h"
#include "State/Folders/FoldersState.h"
#include "State/Folders/GivenFolder.h"
#include "State/QmlModule.h"
#include "State/Shared/AppState.h"
#include "State/Shared/Desktop.h"
#include "State/Shared/WindowDialogs.h"
#include "State/Threads/Background.h"
#include "UninstallMeasurement.h"

#include <QGuiApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QSurfaceFormat>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {

using namespace tarvik;

/// What the toolkit reads from the environment when it starts. What the user has set stands.
void prepareToolkit(const Options& options) {
    const auto setDefault = [](const char* name, const char* value) { ::setenv(name, value, 0); };
    if (options.picture) setDefault("QT_QPA_PLATFORM", "offscreen");
    const char* const platform = std::getenv("QT_QPA_PLATFORM");
    const bool isOffscreen = platform && std::string_view(platform).starts_with("offscreen");
    // Without a card to draw, drawing with the processor at once is quicker than pretending to have one.
    if (isOffscreen || !Appearance::hasGraphicsCard()) setDefault("QT_QUICK_BACKEND", "software");
    setDefault("QT_QUICK_CONTROLS_STYLE", "Basic");
}

/// Saves a picture once the first refresh is over and what moves in the window has come to rest, then quits.
void savePictureWhenReady(QQuickWindow& window, const AppState& state, const fs::path& file) {
    ShownTab::whenIdle(window, state, [&window, file] {
        QTimer::singleShot(300, &window, [&window, file] {
            const bool isSaved = window.grabWindow().save(QString::fromStdString(file.native()), "PNG");
            if (!isSaved) std::fprintf(stderr, "The picture could not be saved as %s.\n", file.c_str());
            QCoreApplication::exit(isSaved ? EXIT_SUCCESS : EXIT_FAILURE);
        });
    });
}

void printTimeOfFirstFrame(QQuickWindow& window) {
    QObject::connect(
        &window, &QQuickWindow::frameSwapped, &window,
        [] {
            std::printf("%lld\n", static_cast<long long>(processAge().count()));
            QCoreApplication::quit();
        },
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

int runWindow(QGuiApplication& application, const Options& options, const Host& host) {
    WindowDialogs dialogs{nullptr};
    AppState state(host, dialogs);
    const auto desktop = makeSystemDesktop();
    QQmlApplicationEngine engine;
    QmlModule::attach(engine, state, dialogs, *desktop);
    QVariantMap initial;
    if (options.size) initial = {{"width", options.size->first}, {"height", options.size->second}};
    engine.setInitialProperties(initial);
    std::optional<RefreshMeasurement> measurement;
    if (options.measuresRefresh) measurement.emplace(state.tab<AppsState>(), options.measuresScrolling);
    std::optional<HealthMeasurement> healthMeasurement;
    if (options.measuresHealth) healthMeasurement.emplace(state);
    std::optional<UninstallMeasurement> uninstallMeasurement;
    if (options.measuresUninstall) uninstallMeasurement.emplace(state);
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Tarvik/Views/MainWindow.qml")));
    if (engine.rootObjects().isEmpty()) return EXIT_FAILURE;

    auto& window = *qobject_cast<QQuickWindow*>(engine.rootObjects().first());
    new CloseGuard(window, state);
    new GivenFolder(application, state.tab<FoldersState>());
    if (options.picture) savePictureWhenReady(window, state, *options.picture);
    if (options.wantsTimeToFirstFrame) printTimeOfFirstFrame(window);
    if (measurement) measurement->watch(window);
    if (healthMeasurement) healthMeasurement->watch(window);
    if (uninstallMeasurement) uninstallMeasurement->watch(window);
    return application.exec();
}

int run(int argc, char** argv) {
    const Options options = Options::parse({argv + 1, argv + argc});
    if (options.wantsHelp) return std::fputs(Options::help().c_str(), stdout), EXIT_SUCCESS;
    if (options.wantsVersion) return std::puts("Tarvik " TARVIK_VERSION), EXIT_SUCCESS;
    const Host host = Host::fromOptions(options.root, options.home);

    host.guideTools();
    prepareToolkit(options);
    int toolkitArgumentCount = 1;
    // Icons are drawn as shapes: without samples their edges are jagged on a graphics card.
    QSurfaceFormat surface = QSurfaceFormat::defaultFormat();
    surface.setSamples(4);
    QSurfaceFormat::setDefaultFormat(surface);
    QGuiApplication application(toolkitArgumentCount, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Tarvik"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TARVIK_VERSION));
    Appearance::forceLight();
    Appearance::identify();
    const int status = runWindow(application, options, host);
    Background::finish();
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    tarvik::StandardStreams::occupyClosed();
    try {
        return run(argc, argv);
    } catch (const tarvik::Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return failure.domain() == "Options" ? 2 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return EXIT_FAILURE;
    }
}
