#pragma once
#include <utility>
#include <vector>

// Arrays throughout the program grow the same way: an empty one gets room for two on the first
// append, a full one doubles. std::vector's own policy would give 1, 2, 4, ...
template <typename T, typename U>
void appendGrowing(std::vector<T>& array, U&& item)
{
    if (array.size() == array.capacity())
        array.reserve(array.capacity() == 0 ? 2 : array.capacity() * 2);
    array.push_back(std::forward<U>(item));
}
