#pragma once
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace quillmar {

/// A number from 0 to below its argument, each as likely as the others. Any thread.
using RandomIndex = std::function<std::size_t(std::size_t)>;

/// The elements in an order of which each is as likely as the others.
template <class T>
std::vector<T> shuffled(std::vector<T> elements, const RandomIndex& randomIndex) {
    for (std::size_t i = elements.size(); i > 1; --i) std::swap(elements[i - 1], elements[randomIndex(i)]);
    return elements;
}

}  // namespace quillmar
