#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "base/JsonError.h"
#include "base/Url.h"
#include "remote/fetching/RemoteImageProviderError.h"
#include "remote/fetching/RemoteServices.h"

namespace quillmar {

/// What `parse` makes of the answer; what it cannot read becomes a failure of the service.
template <class Parse>
auto understood(const RemoteService& service, Parse parse, std::string_view answer) {
    try {
        return parse(answer);
    } catch (const JsonRecordError& error) {
        throw RemoteImageProviderError(RemoteImageProviderError::Case::invalidResponse, service.name,
                                       error.what());
    }
}

/// The address when it is one of the web.
std::optional<Url> webAddress(const std::optional<std::string>& text);
/// Its text where it is an address of the web.
std::optional<std::string> webAddressText(const std::optional<std::string>& text);
/// Nothing for an empty text, or one of blanks.
std::optional<std::string> unlessBlank(std::optional<std::string> text);

}  // namespace quillmar
