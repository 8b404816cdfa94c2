#ifndef OVW_MIXING_INSTRUCTIONSET_H
#define OVW_MIXING_INSTRUCTIONSET_H

namespace ovw::mixing {

enum class InstructionSet { Base, Avx2, Avx512 };

/// Makes the mixers of the whole process use the kernels of one set instead of the machine's best, for tests and
/// benchmarks. False, and nothing changed, when the machine lacks the set.
bool forceInstructionSet(InstructionSet set);

/// The set in force.
InstructionSet instructionSet();

} // namespace ovw::mixing

#endif // OVW_MIXING_INSTRUCTIONSET_H
