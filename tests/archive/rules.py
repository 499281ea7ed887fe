"""How a rule is written: a function that yields what is wrong with a file, under the clause that forbids it."""
import collections

Finding = collections.namedtuple("Finding", "clause text")


class Rules(list):
    """The rules of one standard, in the order of its clauses."""

    def __init__(self, standard):
        super().__init__()
        self.standard = standard

    def rule(self, clause):
        def add(function):
            self.append((clause, function))
            return function
        return add

    def findings(self, file):
        for clause, function in self:
            try:
                for text in function(file):
                    yield Finding(f"{self.standard}, {clause}", text)
            except Exception as error:  # a rule that stumbles has met what it did not expect: that is no pass
                yield Finding(f"{self.standard}, {clause}", f"cannot be judged: {error!r}")
