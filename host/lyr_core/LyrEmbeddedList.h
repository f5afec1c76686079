#pragma once

#include <cstddef>

template <class T, class Tag>
class LyrEmbeddedList;

/** A list node that is part of the listed object: entering and leaving a list needs no memory. An object has one node
 * for each Tag; it leaves its list when it is destroyed. T derives from the node. */
template <class T, class Tag>
class LyrEmbeddedListNode {
public:
    LyrEmbeddedListNode() noexcept = default;
    /** A copy is in no list. */
    LyrEmbeddedListNode(const LyrEmbeddedListNode&) noexcept {}
    LyrEmbeddedListNode& operator=(const LyrEmbeddedListNode&) noexcept { return *this; }

    bool isListed() const noexcept { return mList != nullptr; }

protected:
    ~LyrEmbeddedListNode() {
        if (mList) {
            mList->remove(static_cast<T*>(this));
        }
    }

private:
    friend class LyrEmbeddedList<T, Tag>;
    LyrEmbeddedList<T, Tag>* mList = nullptr;
    LyrEmbeddedListNode* mPrevious = nullptr;
    LyrEmbeddedListNode* mNext = nullptr;
};

/** A doubly linked list of objects that carry their own nodes. Owns nothing; not thread-safe. */
template <class T, class Tag>
class LyrEmbeddedList {
    using Node = LyrEmbeddedListNode<T, Tag>;

public:
    LyrEmbeddedList() noexcept = default;
    LyrEmbeddedList(const LyrEmbeddedList&) = delete;
    LyrEmbeddedList& operator=(const LyrEmbeddedList&) = delete;
    ~LyrEmbeddedList() {
        while (mFirst) {
            remove(static_cast<T*>(mFirst));
        }
    }

    void append(T* item) noexcept {
        Node* node = item;
        if (node->mList) {
            node->mList->remove(item);
        }
        node->mList = this;
        node->mPrevious = mLast;
        node->mNext = nullptr;
        (mLast ? mLast->mNext : mFirst) = node;
        mLast = node;
        ++mSize;
    }

    void remove(T* item) noexcept {
        Node* node = item;
        if (node->mList != this) {
            return;
        }
        (node->mPrevious ? node->mPrevious->mNext : mFirst) = node->mNext;
        (node->mNext ? node->mNext->mPrevious : mLast) = node->mPrevious;
        node->mList = nullptr;
        node->mPrevious = node->mNext = nullptr;
        --mSize;
    }

    T* first() const noexcept { return static_cast<T*>(mFirst); }
    static T* next(const T* item) noexcept {
        const Node* node = item;
        return static_cast<T*>(node->mNext);
    }
    std::size_t size() const noexcept { return mSize; }
    bool isEmpty() const noexcept { return mFirst == nullptr; }

private:
    Node* mFirst = nullptr;
    Node* mLast = nullptr;
    std::size_t mSize = 0;
};
