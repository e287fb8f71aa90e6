// The pages that are made from what kvrctl says of itself (`kvrctl help --json`): each maker reads
// that object and nothing else, and writes the same page for the same object.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace reference {

using Json = nlohmann::ordered_json;

struct Page {
  std::string file;  // its path from the folder of all pages, with '/'
  std::string text;
};

Page MarkdownReference(const Json &program);
std::vector<Page> ManPages(const Json &program);  // one for the program and one for each family
Page BashCompletion(const Json &program);
Page ZshCompletion(const Json &program);

// The words of a command, as "group create".
std::string WordsOf(const Json &command);

// The strings of a list, joined.
std::string Joined(const Json &list, const std::string &between);

// The commands below a family; those that stand alone where it is empty.
std::vector<Json> CommandsBelow(const Json &program, const std::string &family);

// The words that may follow these: families and commands, or the commands of a family.
std::vector<std::string> WordsBelow(const Json &program, const std::string &family);

// An argument or option as it is typed, as "HOST..." and "--reserve N".
std::string LabelOf(const Json &item);

// What it means, with the value that it has where it is not given.
std::string MeaningOf(const Json &item);

// What a command does to the tables of the hosts, and whether a batch takes it, in sentences.
std::string EffectOf(const Json &command);

// The text with every occurrence of what is searched replaced.
std::string Replaced(std::string text, const std::string &searched, const std::string &by);

}  // namespace reference
