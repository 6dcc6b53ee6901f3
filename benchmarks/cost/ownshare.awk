# The own share of a profile of callgrind: what the simulated machine and all that it calls did not do. The clients that
# the machine calls count again. The profile is written with --compress-strings=no --compress-pos=no.
#   awk -f ownshare.awk PROFILE                    own instructions
#   awk -v counts=1 -f ownshare.awk PROFILE        "own=… platform=… addref=… release=… queryinterface=…": the last four
#                                                  are calls from outside of the machine into it

# The platform's functions off Windows: the machine's classes and the runtime functions that it defines.
function isSim(name) {
    return name ~ /^(non-virtual thunk to |virtual thunk to )?sim::/ || name ~ /[^a-zA-Z_:]sim::/ ||
        name ~ /^libOSWindows::ConfigManager::/ ||
        name ~ /^(CoCreateInstance|CoInitialize(Ex)?|CoUninitialize|CoTaskMem(Alloc|Free)|PropVariantClear)$/ ||
        name ~ /^(CLSIDFromString|PostMessageW)$/ ||
        name ~ /^wave(In|Out)(Message|GetNumDevs)$/
}

function isClient(name) { return name ~ /((sonavit|plain|direct)::|^SoundCard::)/ && !isSim(name) }

function isReference(name, operation) { return name ~ ("::" operation "\\(") }

# Calls are counted where instructions are not, too; those have no cost.
function countCall(name, calls) {
    if (isReference(name, "AddRef"))
        addref += calls
    else if (isReference(name, "Release"))
        release += calls
    else if (isReference(name, "QueryInterface"))
        queryinterface += calls
    else
        platform += calls
}

# A name may have its file's number or the number of a clone behind it: function'2 is a recursive call.
/^fn=/ { from = substr($0, 4); next }
/^cfn=/ { to = substr($0, 5); next }
/^calls=/ {
    split($1, number, "=")
    getline
    if (!isSim(from) && isSim(to)) {
        sum -= $NF
        if ($NF > 0)
            countCall(to, number[2])
    }
    if (isSim(from) && isClient(to))
        sum += $NF
    next
}
/^[-+*0-9]/ { sum += $NF }
END {
    if (counts)
        printf "own=%d platform=%d addref=%d release=%d queryinterface=%d\n", sum, platform, addref, release, queryinterface
    else
        printf "%d\n", sum
}
