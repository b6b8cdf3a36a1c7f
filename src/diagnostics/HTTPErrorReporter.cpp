#include "diagnostics/HTTPErrorReporter.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "async/Sleep.h"
#include "base/Uuid.h"
#include "diagnostics/ErrorReport.h"

namespace quillmar {
namespace {

constexpr std::size_t maximumReportsPerBatch = 3;
constexpr std::chrono::seconds interBatchDelay{30};
constexpr std::chrono::seconds initialRetryDelay{30};
constexpr std::chrono::seconds maximumRetryDelay{1800};
constexpr std::chrono::seconds requestTimeout{15};
constexpr std::chrono::seconds resourceTimeout{30};

bool isRefusedForGood(int status) { return status >= 400 && status <= 499 && status != 408 && status != 429; }

}  // namespace

HTTPErrorReporter::HTTPErrorReporter(MainLoop& loop, const WallClock& clock, Executor& files,
                                     HTTPSession& session, const Scrubber& scrubber,
                                     std::filesystem::path queueFolder, std::optional<Url> endpoint)
    : loop_(loop),
      clock_(clock),
      files_(files),
      session_(session),
      scrubber_(scrubber),
      queue_{std::move(queueFolder)},
      endpoint_(std::move(endpoint)),
      scope_(loop) {}

Task<void> HTTPErrorReporter::prepare() {
    co_await files_.run([queue = queue_] { queue.prepare(); });
}

void HTTPErrorReporter::startWorker() {
    if (isPreparingForTermination_ || worker_ || !endpoint_) return;
    worker_ = scope_.start(work());
}

Task<void> HTTPErrorReporter::enqueue(DiagnosticEntry entry, std::optional<std::string> tail) {
    try {
        co_await prepare();  // the folder may have gone meanwhile
        if (duplicates_.admits(errorReportFingerprint(entry), loop_.now())) {
            co_await files_.run([queue = queue_, name = newFileName(), entry = std::move(entry),
                                 tail = std::move(tail), scrubber = &scrubber_] {
                const std::string payload = errorReportPayload(entry, tail, *scrubber);
                if (payload.size() > maximumReportBytes) throw std::length_error("the report is too large");
                queue.add(name, payload);
            });
        }
        startWorker();
    } catch (const CancellationError&) {
        throw;
    } catch (const std::exception&) {
        // This report is lost, and the next one may fare better: saying so in the log would only make
        // another.
    }
}

void HTTPErrorReporter::prepareForTermination() {
    isPreparingForTermination_ = true;
    worker_.cancel();
    worker_.reset();
    session_.invalidateAndCancel();
}

Task<void> HTTPErrorReporter::work() {
    try {
        co_await drain();
    } catch (const std::exception&) {
        // Cancelled, or out of memory: the next report, or the next launch, begins anew.
    }
    worker_.reset();
}

Task<void> HTTPErrorReporter::drain() {
    while (!isPreparingForTermination_) {
        const BatchOutcome outcome = co_await sendBatch();
        if (outcome == BatchOutcome::idle) {
            consecutiveFailures_ = 0;
            co_return;
        }
        const Duration pause = pauseAfter(outcome);
        co_await sleepFor(pause);
    }
}

Duration HTTPErrorReporter::pauseAfter(BatchOutcome outcome) {
    if (outcome == BatchOutcome::moreWaiting) {
        consecutiveFailures_ = 0;
        return interBatchDelay;
    }
    // Capped, so that years of an outage never overflow the pause.
    consecutiveFailures_ = std::min(consecutiveFailures_ + 1, 11);
    return std::min(initialRetryDelay * (1 << (consecutiveFailures_ - 1)), maximumRetryDelay);
}

Task<HTTPErrorReporter::BatchOutcome> HTTPErrorReporter::sendBatch() {
    std::vector<std::string> names;
    try {
        names = co_await files_.run([queue = queue_] { return queue.pending(); });
    } catch (const std::system_error&) {
        co_return BatchOutcome::idle;  // no folder, nothing to send
    }
    if (names.size() > maximumReportsPerBatch) names.resize(maximumReportsPerBatch);
    for (const std::string& name : names) {
        const bool settled = co_await isSettled(name);
        if (!settled) co_return BatchOutcome::failed;
    }
    try {
        const bool areMoreWaiting =
            co_await files_.run([queue = queue_] { return !queue.pending().empty(); });
        co_return areMoreWaiting ? BatchOutcome::moreWaiting : BatchOutcome::idle;
    } catch (const std::system_error&) {
        co_return BatchOutcome::idle;
    }
}

/// Whether the report is done with: delivered, refused for good, or unusable.
Task<bool> HTTPErrorReporter::isSettled(std::string name) {
    const bool cancelled = co_await isCancelled();
    if (cancelled || isPreparingForTermination_) co_return false;
    const std::optional<std::string> payload =
        co_await files_.run([queue = queue_, name] { return queue.readOrRemove(name); });
    if (!payload) co_return true;
    int status = 0;
    try {
        const HTTPResponse response = co_await session_.open(request(*payload));
        status = response.status;
    } catch (const std::exception&) {
        co_return false;
    }
    const bool isDelivered = status >= 200 && status <= 299;
    if (!isDelivered && !isRefusedForGood(status)) co_return false;
    co_await files_.run([queue = queue_, name] { queue.remove(name); });
    co_return true;
}

HTTPRequest HTTPErrorReporter::request(const std::string& payload) const {
    const auto bytes = asBytes(payload);
    return {.method = "POST",
            .url = *endpoint_,
            .headers = {{"Content-Type", "application/json"}, {"User-Agent", "Quillmar/Linux"}},
            .body = Bytes(bytes.begin(), bytes.end()),
            .requestTimeout = requestTimeout,
            .resourceTimeout = resourceTimeout};
}

/// The time in milliseconds and something unique, so that sorting by name is sorting by age.
std::string HTTPErrorReporter::newFileName() {
    const auto sinceEpoch = clock_.now().time_since_epoch();
    std::int64_t time = std::chrono::floor<std::chrono::milliseconds>(sinceEpoch).count();
    // Reports of one millisecond keep their order. A clock that was set back is followed.
    if (time <= lastFileTime_ && lastFileTime_ - time < 1000) time = lastFileTime_ + 1;
    lastFileTime_ = time;
    return fmt::format("{:013}-{}.json", time, Uuid::random().string());
}

}  // namespace quillmar
