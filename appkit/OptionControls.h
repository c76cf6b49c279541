#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>
#include <string_view>

#include "actions/Option.h"
#include "appkit/Views.h"

namespace quorel::appkit {

/// What shows one option, without its label. Main thread.
class OptionControl {
public:
    explicit OptionControl(NSView *view) : _view(view) {}
    virtual ~OptionControl() = default;
    NSView *view() const { return _view.get(); }  ///< as large as it has to be
    virtual void show(const Value &value) = 0;    ///< of the option's kind
    virtual Value shown() = 0;
    virtual void setEnabled(bool enabled) = 0;

private:
    Retained<NSView> _view;
};

/// `changed` is called when somebody ticks a flag. Texts are in that language. A tool tip is also what assistive
/// programs call a control without a title.
std::unique_ptr<OptionControl> controlOf(const Option &option, std::string_view language, NSString *toolTip,
                                         std::function<void()> changed);

/// Whether the control is to be as wide as there is room.
bool isWide(const Option &option);

/// Retained by nobody, as wide as its text.
NSTextField *labelOf(NSString *text);

}  // namespace quorel::appkit
