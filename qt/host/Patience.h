#pragma once

#include <QObject>
#include <functional>
#include <optional>
#include <utility>

#include "kit/VXCommunicationCenter.h"
#include "platform/System.h"

namespace quorel::qt {

/// Does on a thread of its own what would hold the window up, and returns when that is done. Meanwhile the window is
/// painted, and whatever a person does to it is lost; closing it is up to the window, which asks `isWaiting`. Main
/// thread.
class Patience : public QObject {
public:
    void during(const std::function<void()>& work);
    bool isWaiting() const { return _depth > 0; }

private:
    bool eventFilter(QObject* object, QEvent* event) override;
    int _depth = 0;
};

/// The authority, asked without holding the window up.
class PatientAuthorization : public Authorization {
public:
    PatientAuthorization(Authorization& authorization, Patience& patience)
        : _authorization(authorization), _patience(patience) {}
    AuthorizationStatus AuthorizationCreate(AuthorizationFlags flags, AuthorizationRef& authorization) override;
    AuthorizationStatus AuthorizationCopyRights(AuthorizationRef authorization,
                                                std::span<const AuthorizationItem> rights,
                                                AuthorizationFlags flags) override;
    AuthorizationStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags flags) override;

private:
    Authorization& _authorization;
    Patience& _patience;
};

/// The channel to the other programs, used without holding the window up. Any thread; only the main one waits so.
class PatientCenter : public VXCommunicationCenter {
public:
    PatientCenter(VXCommunicationCenter& center, Patience& patience) : _center(center), _patience(patience) {}

    /// How the last save ended, once; nothing where none was tried. Main thread.
    std::optional<EditsAnswer> takeLastSave() { return std::exchange(_lastSave, std::nullopt); }

    void setObserver(std::weak_ptr<VXCommunicationProtocol> observer) override { _center.setObserver(observer); }
    void createServerConnection() override { _center.createServerConnection(); }
    bool pingDaemon() override;
    bool pingAgentOfUser(unsigned userId) override;
    bool postNotificationToDaemon(const Notification& notification) override;
    EditsAnswer postNotificationToDaemon(const Notification& notification, const Value& base) override;
    bool postNotificationToAgentOfUser(const Notification& notification, unsigned userId) override;

private:
    template <class Question>
    auto ask(const Question& question);

    VXCommunicationCenter& _center;
    Patience& _patience;
    std::optional<EditsAnswer> _lastSave;
};

}  // namespace quorel::qt
