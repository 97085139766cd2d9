// SPDX-License-Identifier: MIT
// The least that any program does which answers JSON lines: reads each and writes it again.
#include <iostream>
#include <string>

#include <nlohmann/json.hpp>

int main() {
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    std::string line;
    while (std::getline(std::cin, line)) {
        std::cout << nlohmann::ordered_json::parse(line).dump() << '\n';
    }
}
