#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QSocketNotifier>
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include <sys/signalfd.h>

#include "ProductVersion.h"
#include "linux/pane/SystemServices.h"
#include "model/Preferences.h"
#include "model/Wire.h"
#include "qt/host/BusLoop.h"
#include "qt/host/Host.h"
#include "qt/host/OneWindow.h"
#include "qt/sheet/OptionForm.h"
#include "qt/toolkit/Bundles.h"
#include "qt/toolkit/Services.h"
#include "qt/toolkit/Text.h"
#include "words/Language.h"

namespace quorel::qt {

namespace {

/// What lies beside the program, in an installation and in a build folder alike.
std::string besideProgram(const char* way) {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    return (program / way).lexically_normal().string();
}

struct Options {
    std::string root;  ///< stands before the product's absolute paths
    std::string feed = product::kUpdateFeed;
    std::string caFile;
    std::string modules = besideProgram("../lib/quorel/modules");
};

Options optionsOf(const QApplication& application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    Options options;
    const std::pair<const char*, std::string*> known[] = {
        {"root", &options.root}, {"feed", &options.feed}, {"ca-file", &options.caFile}, {"modules", &options.modules}};
    for (const auto& [name, value] : known)
        parser.addOption({QString::fromLatin1(name), QString(), QStringLiteral("value"), qString(*value)});
    parser.process(application);
    for (const auto& [name, value] : known) *value = stdString(parser.value(QString::fromLatin1(name)));
    return options;
}

/// What the pane asks of this toolkit and of the system; lasts as long as the program.
struct Composition {
    explicit Composition(const Options& options)
        : system(startSystemServices({.program = "quorel-settings",
                                      .root = options.root,
                                      .updates = {.feed = options.feed,
                                                  .installedVersion = product::kVersion,
                                                  .installedBuild = product::kBuild,
                                                  .caFile = options.caFile}},
                                     mainQueue)),
          authorization(system.authorization, patience),
          center(*VXCommunicationCenter::sharedInstance(), patience) {
        VXCommunicationCenter::setSharedInstance(&center);
    }

    Application application;
    OptionForms forms;
    Bundles bundles{forms};
    Cells cells;
    MainQueue mainQueue;
    NotificationCenter defaultCenter;
    UserDefaults standardUserDefaults;
    TimeFormat timeFormat;
    Patience patience;
    System system;
    PatientAuthorization authorization;
    PatientCenter center;
    Platform platform{{.application = application,
                       .bundles = bundles,
                       .cells = cells,
                       .defaultCenter = defaultCenter,
                       .standardUserDefaults = standardUserDefaults,
                       .timeFormat = timeFormat},
                      {.authorization = authorization,
                       .clock = system.clock,
                       .dispatch = system.dispatch,
                       .files = system.files,
                       .sharedWorkspace = system.sharedWorkspace,
                       .effectiveUserId = system.effectiveUserId}};
};

/// SIGTERM and SIGINT come in through a file that the loop reads.
void leaveOnSignals(Host& host) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGHUP);
    const int file = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    auto* const notifier = new QSocketNotifier(file, QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [&host, notifier] {
        notifier->setEnabled(false);  // nobody reads what came; it would be told again and again
        host.leave();
    });
}

void blockSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

int run(int argc, char** argv) {
    blockSignals();  // before threads are started
    QApplication::setApplicationName(QStringLiteral("quorel-settings"));
    QApplication::setDesktopFileName(QStringLiteral("com.quorel.Settings"));
    QApplication application(argc, argv);
    speakUsersLanguage();
    const Options options = optionsOf(application);
    const std::string resources = besideProgram("../share/quorel");
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral("com.quorel.Settings"), QIcon(qString(resources + "/Resources/Quorel.png"))));
    auto& parts = *new Composition(options);
    BusLoop bus;
    QWidget* first = nullptr;
    const OneWindow one(bus.loop(), [&first] {
        if (!first) return;
        first->show();
        first->raise();
        first->activateWindow();
    });
    if (!one.isFirst()) return EXIT_SUCCESS;
    Host* shown = nullptr;
    const auto show = [&shown] {
        if (shown) shown->showPlan();
    };
    const auto look = [&shown] {
        if (shown) shown->lookAtPrograms();
    };
    DaemonView plan(bus.loop(), {.outcomes = wire::scheduler::kMostOutcomes, .status = true, .asksPeople = true},
                    {.changed = show, .ownerChanged = look});
    const BusSlot agent = watchOwner(one.bus(), std::string(kUserAgentName), [look](const std::string&) { look(); });
    plan.fetch();
    SettingsWindow window(plan, QString::fromUtf8(product::kCopyright), qString(resources + "/Resources/Quorel.png"));
    Host host({window, plan, parts.application, parts.platform, parts.patience,
               std::make_shared<Bundle>(resources, options.modules, parts.bundles, parts.forms), parts.center,
               options.root + std::string(preferences::kFile)});
    shown = &host;
    parts.forms.changed = window.sheet->changed;
    first = &window;
    leaveOnSignals(host);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &window, [&host] { host.leave(); });
    window.show();
    return QApplication::exec();
}

}  // namespace

}  // namespace quorel::qt

int main(int argc, char** argv) {
    const int status = quorel::qt::run(argc, argv);
    std::quick_exit(status);  // background work may still use what would be destroyed now
}
