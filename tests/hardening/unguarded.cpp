// What a program looks like without any guard; never run.
int main(int argc, char**)
{
    return argc - 1;
}
