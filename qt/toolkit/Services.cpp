#include "qt/toolkit/Services.h"

#include <QCoreApplication>
#include <QLocale>
#include <QThread>
#include <QTime>
#include <QTimer>

#include "qt/toolkit/Text.h"

namespace quorel::qt {

namespace {

template <class Interface>
class PlainCell : public Interface {
public:
    void setTarget(const Object*) override {}
    void setEnabled(bool enabled) override { isEnabled = enabled; }
    bool isEnabled = true;
};

class PlainButtonCell : public PlainCell<ButtonCell> {
    void setButtonType(ButtonType) override {}
    void setControlSize(ControlSize) override {}
    void setImagePosition(ImagePosition) override {}
};

}  // namespace

/// The locale "C" has seconds even in its short form.
QString shortTimeFormat() {
    QString format = QLocale().timeFormat(QLocale::ShortFormat);
    return format.remove(QStringLiteral(":ss"));
}

std::string TimeFormat::shortTimeString(const CalendarDate& date) const {
    return stdString(QLocale().toString(QTime(date.hour, date.minute), shortTimeFormat()));
}

void MainQueue::async(Block block) {
    QMetaObject::invokeMethod(qApp, std::move(block), Qt::QueuedConnection);
}

void MainQueue::sync(const Block& block) {
    QMetaObject::invokeMethod(qApp, block, Qt::BlockingQueuedConnection);
}

void MainQueue::after(std::chrono::nanoseconds delay, Block block) {
    const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(delay);
    async([wait, block = std::move(block)] { QTimer::singleShot(wait, qApp, block); });
}

std::shared_ptr<ButtonCell> Cells::makeButtonCell(std::string_view) {
    return std::make_shared<PlainButtonCell>();
}

std::shared_ptr<Cell> Cells::makeConfiguratorCell(std::string_view) {
    return std::make_shared<PlainCell<Cell>>();
}

bool isEnabled(const Cell* cell) {
    if (const auto* button = dynamic_cast<const PlainButtonCell*>(cell)) return button->isEnabled;
    const auto* plain = dynamic_cast<const PlainCell<Cell>*>(cell);
    return plain && plain->isEnabled;
}

}  // namespace quorel::qt
