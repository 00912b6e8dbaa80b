/// Loads the libraries that a test executable needs, and does nothing.

int main()
{
    return 0;
}
