#pragma once

#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Files.hpp"

namespace Io {

/// A file that is being written.
class OutputStream {
public:
    OutputStream() = default;
    virtual ~OutputStream() = default;
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;

    /// Writes all bytes; false if the device did not take all of them.
    virtual bool write(std::string_view bytes) = 0;

    /// Ends the file; false if not all that was written has arrived.
    virtual bool close() = 0;
};

/// Where a run finds its files, its programs and the time. This one is the machine itself; a front
/// end may put another one in its place.
class Host {
public:
    Host() = default;
    virtual ~Host() = default;
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Nothing if the file cannot be opened.
    virtual std::optional<Platform::InputFile> openInput(const std::string& path);

    /// Opens a file with a key. It is not an input: nothing of its contents may be recorded.
    /// Nothing if it cannot be opened.
    virtual std::optional<Platform::InputFile> openKey(const std::string& path);

    /// Creates a file, or cuts an existing one to length zero. Null if that is not possible; the
    /// file is untouched then.
    virtual std::unique_ptr<OutputStream> createOutput(const std::string& path,
                                                       Platform::FileMode mode);

    /// Runs a program and waits for its end, see Platform::runProgram.
    virtual int runProgram(const std::string& location, const std::string& arguments);

    /// The time, as "2021-08-18 14:05:09", that an output gives as that of its making; here the
    /// local time. Nothing if outputs are to give none.
    virtual std::optional<std::string> timeText();
};

/// A time of day as "2021-08-18 14:05:09".
std::string timeText(const std::tm& time);

/// The host in force on this thread: that of the innermost scope, or the machine itself.
Host& host();

/// Puts a host in force while this object lives.
class HostScope {
public:
    explicit HostScope(Host& host);
    ~HostScope();
    HostScope(const HostScope&) = delete;
    HostScope& operator=(const HostScope&) = delete;

private:
    Host* outer_;
};

}  // namespace Io
