/// What the platform reports about a part once; included by the library's source files only.
#pragma once

#include "COM/comptr.h"
#include "COM/interfacequery.h"
#include "COM/tasktext.h"
#include "libSonavit/audiopart/log.h"
#include "platform/coreaudio.h"
#include "qor/array.h"
#include "qor/string.h"

#include <algorithm>

namespace libSonavit
{
/// The texts of a snapshot.
struct KeptTexts
{
    void globalIdIs(LPCWSTR text) { globalId = platform::ucs2(text); }
    void nameIs(LPCWSTR text) { name = platform::ucs2(text); }

    qor::String globalId;
    qor::String name;
};

/// As KeptTexts, for an operation that does not use the name.
struct KeptId
{
    void globalIdIs(LPCWSTR text) { globalId = platform::ucs2(text); }
    static void nameIs(LPCWSTR) noexcept {}

    qor::String globalId;
};

/// For an operation that uses no text: the platform is asked for both, and they are freed.
struct DroppedTexts
{
    static void globalIdIs(LPCWSTR) noexcept {}
    static void nameIs(LPCWSTR) noexcept {}
};

namespace partsnapshot
{
/// What is left to do without a trace, see read().
template<class Texts>
void readUntraced(const COMPtr<IPart>::pointer& part, GUID& subType, Texts&& texts)
{
    if (part.get() == nullptr)
        return;
    part->GetSubType(&subType);

    {
        TaskText globalId;
        part->GetGlobalId(globalId.put());
        texts.globalIdIs(globalId.get());
    }
    TaskText name(TaskText::NullText::skipped);
    part->GetName(name.put());
    if (name.get() != nullptr)
        texts.nameIs(name.get());
}

/// Reads the snapshot. All three HRESULTs are ignored on purpose: only what a call stores counts. Without an id from
/// the platform the id becomes empty, whereas without a name the old name stays. A nil @p part changes nothing.
template<class Texts>
void read(const COMPtr<IPart>::pointer& part, GUID& subType, Texts&& texts)
{
    SONAVIT_TRACE(partlog, "AudioPart::initialize()");
    readUntraced(part, subType, texts);
}

/// The part of @p component, with a reference that the caller owns, or null. A pointer along with a failure code is
/// ignored.
template<class I>
IPart* partOf(I& component)
{
    IPart* part = nullptr;
    return SUCCEEDED(interfacequery::query(component, part)) ? part : nullptr;
}

/// Makes room for as many elements as the platform announces. A number above 1,024 may be wrong: the list grows as far
/// as elements arrive then.
template<class T>
void makeRoom(UINT announced, qor::Array<T>& list)
{
    list.ensureCapacity(std::min<UINT>(announced, 1024));
}

/// Appends an element that adopts the reference on @p object: in its place, or by way of a copy if the list has to
/// grow. Without memory for that, the element that is copied has adopted the reference and releases it.
/// @tparam Owned a plain pointer, or what carries one
template<class Owned, class T>
void append(Owned object, qor::Array<T>& list)
{
    if (list.size() < list.capacity())
        list.emplace(object);
    else
        list.append(T(object));
}
}
}
