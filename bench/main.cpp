#include <exception>
#include <filesystem>
#include <iomanip>
#include <iostream>

#include "export_bench.h"
#include "format_bench.h"
#include "load_bench.h"

// Prints what the README claims about speed, as tables of ratios measured in this run.
int main(int, char** argv) {
  const std::string tool = (std::filesystem::absolute(argv[0]).parent_path() / "facetbench").string();
  std::cout << std::fixed << std::setprecision(2);
  try {
    facet::benchLoad(std::cout, tool);
    std::cout << '\n';
    facet::benchFormats(std::cout);
    std::cout << '\n';
    facet::benchExport(std::cout);
  } catch (const std::exception& error) {
    std::cerr << "facet_bench: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
