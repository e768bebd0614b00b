// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/sort_with_index.h"

#include <iostream>
#include <utility>

namespace XTNT {

namespace {

constexpr long long insertionBelow = 8;

// The keys with their original positions: whatever moves, moves in both.
struct IndexedKeys
{
    double* key;
    long long* position;

    void exchange(long long i, long long j)
    {
        std::swap(key[i], key[j]);
        std::swap(position[i], position[j]);
    }

    void order(long long i, long long j)
    {
        if (key[j] < key[i]) {
            exchange(i, j);
        }
    }

    void insertionSort(long long first, long long last);
    std::pair<long long, long long> partition(long long first, long long last);
    void sort(long long first, long long last, int stackEntries);
};

void IndexedKeys::insertionSort(long long first, long long last)
{
    for (long long i = first + 1; i <= last; ++i) {
        const double movedKey = key[i];
        const long long movedPosition = position[i];
        long long j = i;
        for (; j > first && key[j - 1] > movedKey; --j) {
            key[j] = key[j - 1];
            position[j] = position[j - 1];
        }
        key[j] = movedKey;
        position[j] = movedPosition;
    }
}

// Splits [first, last] about the median of three. Returns the last of the lower and the first of the upper part; what
// lies between equals the pivot. The scans test their bounds because a NaN stops no scan by itself.
std::pair<long long, long long> IndexedKeys::partition(long long first, long long last)
{
    const long long middle = first + (last - first) / 2;
    order(first, middle);
    order(middle, last);
    order(first, middle);
    const double pivot = key[middle];
    long long i = first;
    long long j = last;
    while (i <= j) {
        while (i < last && key[i] < pivot) {
            ++i;
        }
        while (j > first && key[j] > pivot) {
            --j;
        }
        if (i <= j) {
            exchange(i, j);
            ++i;
            --j;
        }
    }
    return {j, i};
}

// The larger part waits on the stack while the smaller is split on, so the stack fills only beyond 2^25 elements. Then
// the part that finds no room is sorted on a stack of its own.
void IndexedKeys::sort(long long first, long long last, int stackEntries)
{
    long long stack[detail::sortStackEntries];
    int used = 0;
    for (;;) {
        if (last - first + 1 < insertionBelow) {
            insertionSort(first, last);
            if (used == 0) {
                return;
            }
            last = stack[--used];
            first = stack[--used];
            continue;
        }
        const auto [lowerEnd, upperBegin] = partition(first, last);
        const bool lowerIsLarger = lowerEnd - first > last - upperBegin;
        const long long waitingFirst = lowerIsLarger ? first : upperBegin;
        const long long waitingLast = lowerIsLarger ? lowerEnd : last;
        if (used + 2 > stackEntries) {
            std::cout << "NSTACK too small in sort." << std::endl;
            sort(waitingFirst, waitingLast, stackEntries);
        } else {
            stack[used++] = waitingFirst;
            stack[used++] = waitingLast;
        }
        first = lowerIsLarger ? upperBegin : first;
        last = lowerIsLarger ? last : lowerEnd;
    }
}

} // namespace

void detail::sortWithIndex(Vector<double>& v, Vector<long long>& index, int stackEntries)
{
    index.reshape(v.n_);
    for (long long i = 0; i < v.n_; ++i) {
        index[i] = i;
    }
    IndexedKeys{v.data, index.data}.sort(0, v.n_ - 1, stackEntries);
}

void sortWithIndex(Vector<double>& v, Vector<long long>& index)
{
    detail::sortWithIndex(v, index, detail::sortStackEntries);
}

} // namespace XTNT
