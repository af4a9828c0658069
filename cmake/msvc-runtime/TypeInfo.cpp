// Stands for the object with the table of type_info. Every type descriptor that the compiler makes
// points to it, in each module to a table of its own. The run-time never calls through it here.

// The layout that the compiler gives to type descriptors.
class type_info {
public:
    type_info() : undecorated_(nullptr) {}
    virtual ~type_info();

private:
    void* undecorated_;
    char decorated_[4];
};

type_info::~type_info() {}

// The table is made where a constructor uses it.
extern "C" type_info kelTypeInfoTable;
type_info kelTypeInfoTable;
