// Builds a list of records that are linked by `next`. Not part of the public header.
#pragma once

#include <new>

namespace ov {

template <typename Record>
void free_records(Record** head) {
  while (*head != nullptr) {
    Record* const first = *head;
    *head = first->next;
    delete first;
  }
}

// Frees what it holds at the end.
template <typename Record>
class RecordList {
 public:
  RecordList() = default;
  ~RecordList() { free_records(&head_); }
  RecordList(const RecordList&) = delete;
  RecordList& operator=(const RecordList&) = delete;

  // A cleared record at the end; null when memory is short.
  Record* append() {
    auto* const record = new (std::nothrow) Record();
    if (record == nullptr) return nullptr;
    *last_ = record;
    last_ = &record->next;
    return record;
  }
  const Record* head() const { return head_; }
  // Hands the records over, to be freed with free_records.
  Record* release() {
    Record* const head = head_;
    head_ = nullptr;
    last_ = &head_;
    return head;
  }

 private:
  Record* head_ = nullptr;
  Record** last_ = &head_;
};

}  // namespace ov
