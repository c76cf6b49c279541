#pragma once

#include "appkit/Strings.h"
#include "appkit/Views.h"
#include "platform/Controls.h"

namespace quorel::appkit {

/// The outlets' controls. Main thread.

template <class Interface, class Class>
class BasicControl : public BasicView<Interface> {
public:
    explicit BasicControl(Class *control) : BasicView<Interface>(control) {}
    void setEnabled(bool enabled) override { [native() setEnabled:enabled]; }

protected:
    Class *native() const { return static_cast<Class *>(this->nativeView()); }
};

class Image : public quorel::Image {
public:
    explicit Image(NSImage *image) : _image(image) {}
    NSImage *nativeImage() const { return _image.get(); }

private:
    Retained<NSImage> _image;
};

class Button : public BasicControl<quorel::Button, NSButton> {
public:
    using BasicControl::BasicControl;
    int state() const override { return static_cast<int>([native() state]); }
    void setState(int state) override { [native() setState:state == kStateOff ? NSOffState : NSOnState]; }
};

class PopUpButton : public BasicControl<quorel::PopUpButton, NSPopUpButton> {
public:
    using BasicControl::BasicControl;
    void removeAllItems() override { [native() removeAllItems]; }
    void addItemWithTitle(std::string_view title) override;
    void addSeparatorItem() override;
    int numberOfItems() const override { return static_cast<int>([native() numberOfItems]); }
    int indexOfSelectedItem() const override { return static_cast<int>([native() indexOfSelectedItem]); }
    void selectItemAtIndex(int index) override;
    void selectItemWithTitle(std::string_view title) override;
    std::optional<std::string> titleOfSelectedItem() const override;
};

class TextField : public BasicControl<quorel::TextField, NSTextField> {
public:
    using BasicControl::BasicControl;
    void setStringValue(std::string_view text) override { [native() setStringValue:nsString(text)]; }
};

class ImageView : public BasicControl<quorel::ImageView, NSImageView> {
public:
    using BasicControl::BasicControl;
    void setImage(std::shared_ptr<quorel::Image> image) override {
        const auto *own = dynamic_cast<const Image *>(image.get());
        [native() setImage:own ? own->nativeImage() : nil];
    }
};

/// Wraps an NSDatePicker, or a control of ours that answers the same messages.
class DatePicker : public BasicControl<quorel::DatePicker, NSDatePicker> {
public:
    explicit DatePicker(NSControl *picker);
    CalendarDate dateValue() const override;
    void setDateValue(const CalendarDate &date) override;
    void setDelegate(Object *) override {}  // the pane's one does not wish to be told of anything
};

class ProgressIndicator : public BasicView<quorel::ProgressIndicator> {
public:
    explicit ProgressIndicator(NSProgressIndicator *indicator) : BasicView(indicator) {}
    void startAnimation() override { [static_cast<NSProgressIndicator *>(nativeView()) startAnimation:nil]; }
    void stopAnimation() override { [static_cast<NSProgressIndicator *>(nativeView()) stopAnimation:nil]; }
};

}  // namespace quorel::appkit
