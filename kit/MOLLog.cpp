#include "kit/MOLLog.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace quorel {

namespace {

void writeToStandardError(std::string_view line) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
}

std::atomic<MOLLogSink> sink{writeToStandardError};

}  // namespace

void MOLLog(const char* format, ...) {
    char line[1024];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    sink.load()(line);
}

void setMOLLogSink(MOLLogSink newSink) {
    sink = newSink ? newSink : writeToStandardError;
}

}  // namespace quorel
