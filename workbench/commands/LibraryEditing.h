// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class CliSession;
class CommandParser;
struct LibraryCall;

// What `spum library` does beside listing and showing; each function is the action of its name.
namespace LibraryEditing {

void declareOptions(CommandParser& parser);

void save(const LibraryCall& call, CliSession& session);
void import(const LibraryCall& call, CliSession& session);
void append(const LibraryCall& call, CliSession& session);
void merge(const LibraryCall& call, CliSession& session);
void rename(const LibraryCall& call, CliSession& session);
void remove(const LibraryCall& call, CliSession& session);
void writeTemplate(const LibraryCall& call, CliSession& session);

} // namespace LibraryEditing
