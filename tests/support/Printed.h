#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

/// What `print(stream)` writes to the stream.
template <class Print>
std::string Printed(Print print) {
  char* text = nullptr;
  std::size_t size = 0;
  // The stream gives the text its last form when it is closed: it goes first.
  const std::unique_ptr<char*, void (*)(char**)> release(&text,
                                                         [](char** held) { std::free(*held); });
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(open_memstream(&text, &size), std::fclose);
  print(stream.get());
  stream.reset();
  return std::string(text, size);
}
