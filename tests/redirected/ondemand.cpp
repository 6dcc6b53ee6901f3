// Stands for ole32.dll when redirected_module is linked, and is never loaded.

extern "C" __declspec(dllexport) long CoCreateInstance()
{
    return 0;
}
