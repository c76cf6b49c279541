#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>
#include <string_view>

#include "actions/Option.h"
#include "appkit/Views.h"

namespace quorel::appkit {

/// What shows one option, without its label, and how it is spoken to. Main thread.
struct OptionControl {
    std::shared_ptr<Retained<NSView>> view;   ///< as large as it has to be
    std::function<void(const Value &)> show;  ///< takes a value of the option's kind
    std::function<Value()> shown;
    std::function<void(bool)> setEnabled;
};

/// `changed` is called when somebody ticks a flag. Texts are in that language. A tool tip is also what assistive
/// programs call a control without a title.
OptionControl controlOf(const Option &option, std::string_view language, NSString *toolTip,
                        std::function<void()> changed);

/// Retained by nobody, as wide as its text.
NSTextField *labelOf(NSString *text);

}  // namespace quorel::appkit
