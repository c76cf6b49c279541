#include "qt/host/Patience.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QThread>
#include <thread>

namespace quorel::qt {

void Patience::during(const std::function<void()>& work) {
    if (_depth++ == 0) qApp->installEventFilter(this);
    QEventLoop loop;
    std::thread worker([&] {
        work();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    worker.join();
    if (--_depth == 0) qApp->removeEventFilter(this);
}

bool Patience::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::ShortcutOverride:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
        case QEvent::ContextMenu:
            return true;
        default:
            return false;
    }
}

AuthorizationStatus PatientAuthorization::AuthorizationCreate(AuthorizationFlags flags,
                                                              AuthorizationRef& authorization) {
    AuthorizationStatus status{};
    _patience.during([&] { status = _authorization.AuthorizationCreate(flags, authorization); });
    return status;
}

AuthorizationStatus PatientAuthorization::AuthorizationCopyRights(AuthorizationRef authorization,
                                                                  std::span<const AuthorizationItem> rights,
                                                                  AuthorizationFlags flags) {
    AuthorizationStatus status{};
    _patience.during([&] { status = _authorization.AuthorizationCopyRights(authorization, rights, flags); });
    return status;
}

AuthorizationStatus PatientAuthorization::AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags) {
    return _authorization.AuthorizationFree(authorization, flags);
}

template <class Question>
auto PatientCenter::ask(const Question& question) {
    if (QThread::currentThread() != qApp->thread()) return question();
    decltype(question()) answer{};
    _patience.during([&] { answer = question(); });
    return answer;
}

bool PatientCenter::pingDaemon() {
    const bool alive = ask([&] { return _center.pingDaemon(); });
    if (!alive && QThread::currentThread() == qApp->thread()) _lastSave = EditsAnswer();
    return alive;
}

bool PatientCenter::pingAgentOfUser(unsigned userId) {
    return ask([&] { return _center.pingAgentOfUser(userId); });
}

bool PatientCenter::postNotificationToDaemon(const Notification& notification) {
    return ask([&] { return _center.postNotificationToDaemon(notification); });
}

EditsAnswer PatientCenter::postNotificationToDaemon(const Notification& notification, const Value& base) {
    EditsAnswer answer = ask([&] { return _center.postNotificationToDaemon(notification, base); });
    _lastSave = answer;
    return answer;
}

bool PatientCenter::postNotificationToAgentOfUser(const Notification& notification, unsigned userId) {
    return ask([&] { return _center.postNotificationToAgentOfUser(notification, userId); });
}

}  // namespace quorel::qt
