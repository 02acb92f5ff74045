#pragma once

#include <exception>

#include "core/text/message.h"
#include "sys/platform/Arguments.h"

namespace core {

/// Returns the error of an exception, to be reported instead of aborting the process: memory or
/// threads are exhausted, most likely.
[[nodiscard]] Fault faultFromException(std::exception const& exception);
/// Prints the line of that error.
void printException(std::exception const& exception);

/// Runs an application as main does: constructs it, calls its Main with the arguments of the
/// process and returns its Result. An exception is reported as an error, and the result is failed
/// then.
template <class Program>
int runProgram(int argc, char** argv, int failed) {
    try {
        Program application;
        sys::platform::Arguments const arguments(argc, argv);
        application.Main(arguments.Count(), arguments.Words());
        return application.Result();
    } catch (std::exception const& exception) {
        printException(exception);
        return failed;
    }
}

}  // namespace core
