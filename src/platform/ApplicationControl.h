#pragma once
#include <string>

namespace quillmar {

/// What the running process can be told. Main thread.
class ApplicationControl {
public:
    virtual ~ApplicationControl() = default;
    /// Ends the main loop; the process ends with `status` once everything is torn down.
    virtual void exit(int status) = 0;
};

/// Crash reports and short anonymous counts, for those who agreed to send them. Main thread.
class UsageReporting {
public:
    virtual ~UsageReporting() = default;
    /// Begins to watch for crashes of this release.
    virtual void startCrashReporting(const std::string& releaseName) = 0;
    /// Sends one short message such as "hc_action_open_settings".
    virtual void sendMessage(const std::string& message) = 0;
};

/// Sends nothing to anybody.
class NoUsageReporting final : public UsageReporting {
public:
    void startCrashReporting(const std::string&) override {}
    void sendMessage(const std::string&) override {}
};

}  // namespace quillmar
