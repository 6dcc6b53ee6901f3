// Stands for an API set of COM when redirected_module is linked, and is never loaded.

extern "C" __declspec(dllexport) long CoCreateInstanceEx()
{
    return 0;
}
