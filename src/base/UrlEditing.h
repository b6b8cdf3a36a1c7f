#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Url.h"

namespace quillmar {

/// A name and a value of a query, unescaped.
using QueryItem = std::pair<std::string, std::string>;

/// The URL with the items behind any query that it has, escaped so that only their own text comes out again.
Url appendingQueryItems(const Url& url, const std::vector<QueryItem>& items);
/// The URL with the path behind its own and one slash between them. `path` is escaped already.
Url appendingPath(const Url& url, std::string_view path);
/// The text as one component of a path, escaped.
std::string escapedPathComponent(std::string_view text);
/// What a reference within a document at `base` leads to; nothing for what is no URL.
std::optional<Url> resolvedReference(const Url& base, std::string_view reference);
/// The URL with scheme, host and port of `authority`, path and query its own.
Url withAuthorityOf(const Url& url, const Url& authority);
/// What stands behind the last dot of the last path component, in lower case; empty when there is none.
std::string pathExtension(const Url& url);

}  // namespace quillmar
