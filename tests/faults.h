// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Faults put into this program's calls of the system and of the C library.
#pragma once

enum class Call {
  allocate,
  open,   // streams and descriptors; folders too
  read,   //
  write,  // streams but the standard ones
  close,  // streams that were written
  rename, //
  draw,   // random numbers
  other   // what asks about files, or sets their owners or permissions
};

enum class Effect {
  fail,     // with the error `value`; nothing is done, but a stream is closed
  cutShort, // half of the bytes go through; the rest of a write fails with the error `value`
  raise     // the signal `value` comes just before the call
};

struct Fault {
  Call call;
  Effect effect;
  int value;
};

/// The n-th call from now on meets the fault.
void inject(const Fault &fault, int n);

/// No fault is put in any more. How often the call was made since inject().
int endInjection();
