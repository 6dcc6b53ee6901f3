"""Which objects have to be compiled again for a change."""

MOST_OBJECTS = 4


def objects_for(functions, candidates):
    """The objects that define the most of these functions, the ones first that define what no other of them has.

    @param functions: how many tests reach each function, by name
    @param candidates: the functions of each object, by its name, the cheaper ones first"""
    chosen, left = [], dict(functions)
    while left and len(chosen) < MOST_OBJECTS:
        best = max(candidates, key=lambda item: sum(left.get(name, 0) for name in candidates[item]), default=None)
        gained = candidates[best] & left.keys() if best is not None else ()
        if not gained:
            break
        chosen.append(best)
        for name in gained:
            del left[name]
    return chosen
