#pragma once

#include <cstdint>

namespace MERVO::Tessera {

struct ListLink {
    ListLink* next = this;
    ListLink* previous = this;
};

template <typename T>
struct ListNode : ListLink {
    T value{};
};

/// A place in a linked column; reads and writes like a bidirectional iterator. Moving costs a step per element.
template <typename T>
class ListPosition {
public:
    ListPosition() = default;
    explicit ListPosition(ListLink* target) : link(target) {}

    T& operator*() const { return static_cast<ListNode<T>*>(link)->value; }
    ListPosition& operator++()
    {
        link = link->next;
        return *this;
    }
    ListPosition& operator+=(std::int64_t count)
    {
        for (; count > 0; --count) {
            link = link->next;
        }
        for (; count < 0; ++count) {
            link = link->previous;
        }
        return *this;
    }
    friend ListPosition operator+(ListPosition position, std::int64_t count) { return position += count; }
    /// Steps forward from `other` to `position`; `position` must lie ahead.
    friend std::int64_t operator-(const ListPosition& position, ListPosition other)
    {
        std::int64_t steps = 0;
        for (; other != position; ++other) {
            ++steps;
        }
        return steps;
    }
    friend bool operator==(const ListPosition&, const ListPosition&) = default;

    ListLink* link = nullptr;
};

/// A circular doubly linked list around a sentinel that lives in the list itself. It keeps no count.
template <typename T>
class LinkedList {
public:
    LinkedList() = default;
    LinkedList(const LinkedList&) = delete;
    LinkedList& operator=(const LinkedList&) = delete;
    ~LinkedList()
    {
        for (ListLink* link = sentinel.next; link != &sentinel;) {
            ListLink* next = link->next;
            delete static_cast<ListNode<T>*>(link);
            link = next;
        }
    }

    /// Links one node with a value-initialised element behind the last; throws std::bad_alloc.
    void Append()
    {
        ListLink* node = new ListNode<T>;
        node->previous = sentinel.previous;
        node->next = &sentinel;
        sentinel.previous->next = node;
        sentinel.previous = node;
    }
    ListPosition<T> begin() { return ListPosition<T>(sentinel.next); }
    ListPosition<T> end() { return ListPosition<T>(&sentinel); }
    std::uint32_t CountNodes() const
    {
        std::uint32_t count = 0;
        for (const ListLink* link = sentinel.next; link != &sentinel; link = link->next) {
            ++count;
        }
        return count;
    }

private:
    ListLink sentinel;
};

} // namespace MERVO::Tessera
