// A program that does nothing: what starting and ending one takes.

int main(void)
{
    return 0;
}
