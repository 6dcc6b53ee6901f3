// Compiled like the sources of the volume controllers in this test, and without their pragma: it shows that the
// compiler fuses a multiplication and an addition if it may.

float level(float minimum, float maximum, float fraction);

float level(float minimum, float maximum, float fraction)
{
    return (maximum - minimum) * fraction + minimum;
}
