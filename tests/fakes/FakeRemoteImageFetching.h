#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "async/WaitList.h"
#include "remote/fetching/RemoteImageFetching.h"
#include "remote/fetching/RemoteImageProviderError.h"

namespace quillmar {

/// Services that say what the test wrote. What it did not write is a 404.
class FakeRemoteImageFetching final : public RemoteImageFetching {
public:
    using RemoteImageFetching::downloadImage;
    using RemoteImageFetching::fetchMetadata;

    struct Request {
        std::string url;
        std::map<std::string, std::string> headers;
    };
    std::vector<Request> requests;       ///< for metadata, in order
    std::vector<std::string> downloads;  ///< URLs, in order
    std::vector<std::int64_t> limits;    ///< of the downloads

    /// The answers to requests whose URL contains `part`, one after the other; the last one stays. Of several
    /// parts that match the longest counts.
    void answers(std::string part, std::vector<std::string> bodies) {
        bodies_[std::move(part)] = std::move(bodies);
    }
    void answersStatus(std::string part, int status) { statuses_[std::move(part)] = status; }
    /// Downloads of URLs that contain `part` fail.
    void downloadFails(std::string part) { broken_.push_back(std::move(part)); }
    /// Every request and download whose URL contains `part` waits until it is let through, or its task is
    /// cancelled.
    void hold(std::string part = "") { heldPart_ = std::move(part); }
    void letThrough() {
        heldPart_.reset();
        held_.resumeAll();
    }

    Task<std::string> fetchMetadata(RemoteService service, Url url,
                                    std::map<std::string, std::string> headers) override {
        requests.push_back({url.string(), std::move(headers)});
        while (isHeld(url)) co_await held_.wait();
        if (const int* status = longest(statuses_, url.string())) {
            throw RemoteImageProviderError(RemoteImageProviderError::Case::httpStatus, service.name, *status);
        }
        std::vector<std::string>* bodies = longest(bodies_, url.string());
        if (!bodies) {
            throw RemoteImageProviderError(RemoteImageProviderError::Case::httpStatus, service.name, 404);
        }
        std::string body = bodies->front();
        if (bodies->size() > 1) bodies->erase(bodies->begin());
        co_return body;
    }
    Task<std::filesystem::path> downloadImage(RemoteService service, Url url, std::int64_t limit) override {
        downloads.push_back(url.string());
        limits.push_back(limit);
        while (isHeld(url)) co_await held_.wait();
        for (const std::string& part : broken_) {
            if (url.string().find(part) != std::string::npos) {
                throw RemoteImageProviderError(RemoteImageProviderError::Case::imageDownloadFailed,
                                               service.name);
            }
        }
        co_return "/cache/" + url.string().substr(url.string().rfind('/') + 1);
    }

private:
    template <class T>
    static T* longest(std::map<std::string, T>& byPart, const std::string& url) {
        T* found = nullptr;
        std::size_t length = 0;
        for (auto& [part, value] : byPart) {
            if (part.size() < length || url.find(part) == std::string::npos) continue;
            found = &value;
            length = part.size();
        }
        return found;
    }

    bool isHeld(const Url& url) const {
        return heldPart_ && url.string().find(*heldPart_) != std::string::npos;
    }

    std::map<std::string, std::vector<std::string>> bodies_;
    std::map<std::string, int> statuses_;
    std::vector<std::string> broken_;
    std::optional<std::string> heldPart_;
    WaitList held_;
};

}  // namespace quillmar
