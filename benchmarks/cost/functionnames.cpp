#include "functionnames.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace bench
{
namespace
{
std::string file;                                          ///< the program's own
std::vector<std::pair<std::uintptr_t, const char*>> names; ///< by address; they point into the file

template<class T>
const T* at(std::size_t offset)
{
    return reinterpret_cast<const T*>(file.data() + offset);
}

/// Where the program is, against the addresses in its file. It is the first of the modules.
std::uintptr_t programBase()
{
    std::uintptr_t base = 0;
    const auto first = [](dl_phdr_info* module, std::size_t, void* result)
    {
        *static_cast<std::uintptr_t*>(result) = module->dlpi_addr;
        return 1;
    };
    dl_iterate_phdr(first, &base);
    return base;
}

void addNames(const ElfW(Shdr) & table, const ElfW(Shdr) & texts)
{
    const std::uintptr_t base = programBase();
    for (std::size_t offset = 0; offset < table.sh_size; offset += sizeof(ElfW(Sym)))
    {
        const auto& symbol = *at<ElfW(Sym)>(table.sh_offset + offset);
        if (ELF64_ST_TYPE(symbol.st_info) == STT_FUNC && symbol.st_shndx != SHN_UNDEF)
            names.emplace_back(base + symbol.st_value, at<char>(texts.sh_offset + symbol.st_name));
    }
}
}

void readFunctionNames()
{
    std::ifstream program("/proc/self/exe", std::ios::binary);
    file.assign(std::istreambuf_iterator<char>(program), {});
    const auto& header = *at<ElfW(Ehdr)>(0);
    const auto* const sections = at<ElfW(Shdr)>(header.e_shoff);
    for (std::size_t index = 0; index < header.e_shnum; ++index)
    {
        if (sections[index].sh_type == SHT_SYMTAB)
            addNames(sections[index], sections[sections[index].sh_link]);
    }
    if (names.empty())
        throw std::runtime_error("the program has no table of symbols");
    std::sort(names.begin(), names.end());
}

const char* functionName(std::uintptr_t start)
{
    const auto found =
        std::lower_bound(names.begin(), names.end(), std::pair<std::uintptr_t, const char*>(start, nullptr));
    if (found != names.end() && found->first == start)
        return found->second;
    Dl_info info = {};
    const bool isKnown = dladdr(reinterpret_cast<void*>(start), &info) != 0;
    return isKnown && reinterpret_cast<std::uintptr_t>(info.dli_saddr) == start ? info.dli_sname : nullptr;
}
}
