// A property list taken apart, for writing: every object once, in the order of their numbers.
#pragma once

#import <Foundation/Foundation.h>
#include <stdbool.h>
#include <stdint.h>

enum NodeKind { kTextNode, kNumberNode, kDateNode, kDataNode, kListNode, kDictionaryNode };

struct Node {
  id object;  // not owned: the property list does
  enum NodeKind kind;
  uint32_t first;   // of a list or dictionary: where its references begin
  uint32_t count;   // its elements; a dictionary has as many keys, and behind them its values
  uint16_t levels;  // of lists and dictionaries in it, itself included
  bool isOpen;      // while what is in it is being taken apart
};

struct Nodes {
  NSMutableData* nodes;       // struct Node; the root comes first
  NSMutableData* references;  // uint32_t: numbers of nodes
  NSString* fault;            // why it can't be taken apart, or nil
};

// Takes a property list apart; see zelPropertyListFault for what becomes a fault.
struct Nodes zelTakeApart(id root, unsigned deepest);
