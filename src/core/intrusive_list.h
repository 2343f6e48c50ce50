#pragma once

namespace tarvo::core {

/// A link of an `IntrusiveList`; unlinks itself when it dies, so that no list outlives its members.
class ListLink {
 public:
  ListLink() = default;
  ListLink(const ListLink&) = delete;
  ListLink& operator=(const ListLink&) = delete;
  ~ListLink() { Unlink(); }

  bool Linked() const { return next_ != nullptr; }

  void Unlink() {
    if (next_ == nullptr) return;
    previous_->next_ = next_;
    next_->previous_ = previous_;
    next_ = previous_ = nullptr;
  }

 private:
  template <class T>
  friend class IntrusiveList;

  ListLink* next_ = nullptr;
  ListLink* previous_ = nullptr;
};

/// A list whose members carry their own links (`T` derives from `ListLink`): linking allocates nothing.
template <class T>
class IntrusiveList {
 public:
  IntrusiveList() { head_.next_ = head_.previous_ = &head_; }
  IntrusiveList(const IntrusiveList&) = delete;
  IntrusiveList& operator=(const IntrusiveList&) = delete;
  ~IntrusiveList() {
    while (!Empty()) head_.next_->Unlink();
    head_.next_ = head_.previous_ = nullptr;
  }

  bool Empty() const { return head_.next_ == &head_; }
  T* Front() const { return Empty() ? nullptr : static_cast<T*>(head_.next_); }
  T* After(const T* member) const {
    ListLink* next = static_cast<const ListLink*>(member)->next_;
    return next == &head_ ? nullptr : static_cast<T*>(next);
  }

  void PushBack(T& member) { Insert(*head_.previous_, member); }
  /// Puts `member` before `place`; `place` null means at the end.
  void InsertBefore(T* place, T& member) {
    Insert(place == nullptr ? *head_.previous_ : *static_cast<ListLink*>(place)->previous_, member);
  }

  T* PopFront() {
    T* front = Front();
    if (front != nullptr) static_cast<ListLink*>(front)->Unlink();
    return front;
  }

  /// Moves every member of `other` to the end of this list.
  void TakeAll(IntrusiveList& other) {
    while (T* member = other.PopFront()) PushBack(*member);
  }

 private:
  static void Insert(ListLink& after, ListLink& member) {
    member.previous_ = &after;
    member.next_ = after.next_;
    after.next_->previous_ = &member;
    after.next_ = &member;
  }

  ListLink head_;
};

}  // namespace tarvo::core
