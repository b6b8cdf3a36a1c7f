#pragma once
#include <functional>
#include <map>
#include <string>

#include "remote/fetching/RemoteServices.h"

namespace quillmar {

/// Bundle keys that lead each picture service to a host of its own: "https://apod.example".
inline std::map<std::string, std::string, std::less<>> fakeServiceKeys() {
    std::map<std::string, std::string, std::less<>> keys;
    for (const char* name : {"APOD", "EPIC", "EPICArchive", "Wallhaven", "Unsplash", "Bing", "BingWeb",
                             "WindowsSpotlight", "ArtInstituteChicago", "MetropolitanMuseum", "Rijksmuseum",
                             "ClevelandMuseum", "SMKDenmark", "Smithsonian"}) {
        std::string host = name;
        for (char& c : host) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
        keys["Quillmar" + std::string(name) + "Host"] = "https://" + host + ".example";
    }
    keys["QuillmarSemanticVersion"] = "1.2.3";
    keys["QuillmarContactPage"] = "https://quillmar.example/contact";
    return keys;
}

inline RemoteServices fakeServices() { return RemoteServices::of(BundleInfo(fakeServiceKeys())); }

}  // namespace quillmar
