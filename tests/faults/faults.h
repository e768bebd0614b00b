// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Faults at chosen calls of the C library, for tests. The shared library `faults` stands before the C library, either
// preloaded into a program (LD_PRELOAD, tests/support/FaultyRun.h) or linked to a test program that arms it by
// armFaults(). Without rules every call passes.
//
// Rules, from the variable FAULTS or the argument `pRules`, separated by ';':
//
//     KIND[,KIND...]@N[+]=ACTION       e.g.  "sync@1=EIO"  "rename@2+=EACCES;unlink@1=kill"  "change@17=kill"
//
// The N-th call of these kinds, counted together from 1 within this rule, is not done as asked; with '+' every later
// one too. Of several rules that meet a call the first decides.
//
//   kinds    open (for writing), openread, read, write (write, pwrite, writev, sendfile, copy_file_range), sync (fsync,
//            fdatasync, syncfs), rename (renameat and renameat2 too), link, symlink, unlink, rmdir, mkdir, chmod,
//            truncate, close, thread (pthread_create), memory (malloc and its like, anonymous mmap);
//            change: open to truncate, that is everything that changes files but close; file: change, openread, read,
//            close
//   actions  a name of an error (EIO, ENOSPC, EDQUOT, EACCES, EAGAIN, ENOMEM, ENOSYS, EINVAL, EXDEV ...) or its number:
//            the call fails with it, without effect (close closes and then fails);
//            kill: SIGKILL instead of the call; killafter: after it; half: a write of half the bytes, then SIGKILL;
//            short: a write of half the bytes, and ENOSPC from then on for this rule's kinds;
//            skip: nothing is done, and success is answered
//
//   FAULTS_BELOW   only calls whose path (one of both for rename and link) is this folder or below it; absolute, free
//                  of links. Calls by descriptor go by the descriptor's path. It does not concern thread and memory.
//   FAULTS_MEMORY  the kind memory means blocks of at least so many bytes (1048576 when not given).
//   FAULTS_LOG     a line "kind<TAB>path[<TAB>second path]" is appended to this file for each call within FAULTS_BELOW
//                  (thread and memory only where a rule names them), before it is done: count the calls of a first run,
//                  then fail them one by one.
//
// A process that is started by another inherits the variables and counts for itself; so does a forked child.
extern "C" {

// Puts rules in place of the present ones and counts from 1 again; null or "" for none. `pBelow` and `pLog` as the
// variables, null for none. False, with nothing armed, for rules that cannot be read.
bool armFaults(const char* pRules, const char* pBelow, const char* pLog);
// How many calls the first rule has counted so far.
int countedCalls();
}
