#pragma once

#include "store/api.h"
#include "store/vbscalar.h"

/// An element of a BtreeStack.
struct BtreeStack_t {
  vbINT32 Value;
  BtreeStack_t* Next = nullptr;
  BtreeStack_t* Prev = nullptr;
};

/// The addresses of the nodes on the way from the root of a tree down to a leaf, the deepest on
/// top: a doubly linked list that owns its elements. Empty when Head is null.
class KESTDB_API BtreeStack {
 public:
  BtreeStack() = default;
  BtreeStack(const BtreeStack&) = delete;
  BtreeStack& operator=(const BtreeStack&) = delete;
  ~BtreeStack();

  /// New element at the head; null if none could be made.
  BtreeStack_t* Push(vbINT32 value);
  /// New element at the tail; null if none could be made.
  BtreeStack_t* Insert(vbINT32 value);

  /// Removes the head and returns its value, 0 from an empty stack.
  vbINT32 Pop();
  vbINT32 Extract();
  vbINT32 RemoveHead();
  /// Removes the tail and returns its value, 0 from an empty stack.
  vbINT32 RemoveTail();

  void Clear();
  /// Forgets the elements without freeing them: they are the caller's from then on.
  void MakeEmpty();

  static BtreeStack_t* AllocNode(vbINT32 value);
  /// Frees an element that is in no list and returns its value, 0 for a null element.
  static vbINT32 FreeNode(BtreeStack_t* node);
  /// Takes an element out of the list, without freeing it.
  BtreeStack_t* DetachNode(BtreeStack_t* node);
  /// Puts `node` before or behind `place`; into an empty list when `place` is null.
  void InsertBefore(BtreeStack_t* place, BtreeStack_t* node);
  void InsertAfter(BtreeStack_t* place, BtreeStack_t* node);

  BtreeStack_t* Head = nullptr;
  BtreeStack_t* Tail = nullptr;
};
